#include "tools/printer-app/Application.h"

#include <chrono>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <iostream>
#include <string>
#include <system_error>
#include <vector>

#include "tools/printer-app/DeviceUri.h"
#include "tools/printer-app/Documents.h"
#include "tools/printer-app/JobDelivery.h"
#include "tools/printer-app/JobOrder.h"
#include "tools/printer-app/Model.h"
#include "tools/printer-app/Password.h"
#include "tools/printer-app/Reasons.h"
#include "tools/printer-app/SavedAnswers.h"
#include "tools/printer-app/SavedState.h"
#include "tools/printer-app/WholeUploads.h"

namespace quordalvane::printer_app {
namespace {

constexpr auto thisMachine = "localhost";

std::string optionOf(int count, cups_option_t* options, const char* name, const char* usual) {
  const char* const value = cupsGetOption(name, count, options);
  return value == nullptr ? usual : value;
}

bool fail(const std::string& why) {
  std::cerr << "quorport-printer-app: " << why << '\n';
  return false;
}

bool describePrinter(pappl_system_t* /*system*/, const char* driver, const char* /*uri*/,
                     const char* /*id*/, pappl_pr_driver_data_t* data, ipp_t** attributes,
                     void* /*data*/) {
  const Model* const model = modelNamed(driver);
  if (model == nullptr) {
    return false;
  }
  describe(*model, *data, *attributes);
  addCommandDocuments(*data);
  data->status_cb = updateReasons;
  data->identify_cb = beep;
  return true;
}

// The framework announces the printers that it has loaded, but a new printer only when it gets a
// DNS-SD name.
void announce(pappl_printer_t* printer, void* /*data*/) {
  papplPrinterSetDNSSDName(printer, papplPrinterGetName(printer));
}

void addModels(pappl_system_t* system) {
  static std::vector<pappl_pr_driver_t> drivers;
  for (const Model& model : everyModel()) {
    drivers.push_back({model.name, model.description, nullptr, nullptr});
  }
  papplSystemSetPrinterDrivers(system, static_cast<int>(drivers.size()), drivers.data(), nullptr,
                               announce, describePrinter, nullptr);
}

bool save(pappl_system_t* system, void* file) {
  return saveState(system, *static_cast<const std::string*>(file));
}

// The framework starts a waiting job only when another one ends or arrives. This starts the others:
// the jobs that it has loaded, and the jobs after one that was canceled while it waited.
bool lookAfterJobs(pappl_system_t* system, void* file) {
  papplSystemIteratePrinters(
      system,
      [](pappl_printer_t* printer, void* /*data*/) {
        if (papplPrinterGetState(printer) == IPP_PSTATE_IDLE &&
            papplPrinterGetNumberOfActiveJobs(printer) > 0) {
          letOldestGoNext(printer);
          papplPrinterResume(printer);
        }
      },
      nullptr);
  saveChangedJobs(system, *static_cast<const std::string*>(file));
  return true;
}

pappl_loglevel_t levelNamed(const std::string& name) {
  return name == "debug"   ? PAPPL_LOGLEVEL_DEBUG
         : name == "info"  ? PAPPL_LOGLEVEL_INFO
         : name == "error" ? PAPPL_LOGLEVEL_ERROR
                           : PAPPL_LOGLEVEL_WARN;
}

}  // namespace

pappl_system_t* makeSystem(int count, cups_option_t* options, void* /*data*/) {
  const std::string host = optionOf(count, options, "listen-hostname", thisMachine);
  const std::string port = optionOf(count, options, "server-port", "8631");
  static const std::filesystem::path folder =
      optionOf(count, options, "state-directory", "/var/lib/quorport-printer-app");
  static std::string stateFile = folder / "printers.conf";
  std::error_code error;
  std::filesystem::create_directories(folder / "jobs", error);
  if (error) {
    fail("the folder " + folder.string() + " cannot be made: " + error.message());
    return nullptr;
  }
  keepJobsIn(folder / "journal.db", stateFile);
  requireWholeUploads(
      std::chrono::seconds(std::atoi(optionOf(count, options, "upload-timeout", "60").c_str())));
  const bool isForOthers = host != thisMachine;
  pappl_system_t* const system = papplSystemCreate(
      PAPPL_SOPTIONS_MULTI_QUEUE | PAPPL_SOPTIONS_WEB_INTERFACE |
          (isForOthers ? PAPPL_SOPTIONS_WEB_REMOTE | PAPPL_SOPTIONS_WEB_SECURITY
                       : PAPPL_SOPTIONS_NO_TLS),
      "Receipt printers", std::atoi(port.c_str()), isForOthers ? "_print,_universal" : nullptr,
      (folder / "jobs").c_str(), optionOf(count, options, "log-file", "-").c_str(),
      levelNamed(optionOf(count, options, "log-level", "warn")), nullptr, false);
  if (system == nullptr) {
    return nullptr;
  }
  papplSystemSetFooterHTML(system, "QuorIOPort");
  if (isForOthers) {
    papplSystemSetDNSSDName(system, "Receipt printers");
  }
  addModels(system);
  addRenderedDocuments(system);
  papplSystemSetSaveCallback(system, save, &stateFile);
  try {
    letJobsWaitAgain(stateFile);
  } catch (const std::system_error& unwritten) {
    fail(unwritten.what());
    return nullptr;
  }
  papplSystemLoadState(system, stateFile.c_str());
  if (isForOthers && !setPassword(system, optionOf(count, options, "password-file", ""))) {
    fail(
        "to listen to other machines takes -o password-file=FILE, a file with the password of the "
        "web page in its first line");
    return nullptr;
  }
  saveBeforeAnswers(system, stateFile);
  // Clients may connect only after the printers have been loaded.
  papplSystemAddListeners(system, host == "*" ? nullptr : host.c_str());
  papplSystemAddTimerCallback(system, std::time(nullptr), 1, lookAfterJobs, &stateFile);
  return system;
}

}  // namespace quordalvane::printer_app
