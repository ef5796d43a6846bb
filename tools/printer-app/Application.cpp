#include "tools/printer-app/Application.h"

#include <ctime>
#include <filesystem>
#include <iostream>
#include <stdexcept>
#include <string>
#include <system_error>
#include <vector>

#include "tools/printer-app/Documents.h"
#include "tools/printer-app/IncompleteUploads.h"
#include "tools/printer-app/JobDelivery.h"
#include "tools/printer-app/JobOrder.h"
#include "tools/printer-app/Model.h"
#include "tools/printer-app/Password.h"
#include "tools/printer-app/Reasons.h"
#include "tools/printer-app/SavedAnswers.h"
#include "tools/printer-app/SavedState.h"
#include "tools/printer-app/Settings.h"

namespace quordalvane::printer_app {
namespace {

void complain(const std::string& why) {
  std::cerr << "quorport-printer-app: " << why << '\n';
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

// The framework announces the printers that it has loaded. It announces a new printer only when the
// printer gets a DNS-SD name.
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

// Starts jobs that would otherwise wait for ever. The framework starts a waiting job only when
// another job ends or arrives. So it does not start the jobs that it loads at its own start. It
// also does not start the next job after a user has canceled a waiting one.
bool lookAfterJobs(pappl_system_t* system, void* file) {
  papplSystemIteratePrinters(
      system,
      [](pappl_printer_t* printer, void* /*data*/) {
        if (waitsInVain(printer)) {
          letOldestGoNext(printer);
          papplPrinterResume(printer);
        }
      },
      nullptr);
  saveChangedJobs(system, *static_cast<const std::string*>(file));
  return true;
}

pappl_system_t* createSystem(const Settings& settings) {
  const bool isForOthers = settings.isForOthers();
  pappl_system_t* const system = papplSystemCreate(
      PAPPL_SOPTIONS_MULTI_QUEUE | PAPPL_SOPTIONS_WEB_INTERFACE |
          (isForOthers ? PAPPL_SOPTIONS_WEB_REMOTE | PAPPL_SOPTIONS_WEB_SECURITY
                       : PAPPL_SOPTIONS_NO_TLS),
      "Receipt printers", settings.port, isForOthers ? "_print,_universal" : nullptr,
      (settings.folder / "jobs").c_str(), settings.logFile.c_str(), settings.logLevel, nullptr,
      false);
  if (system == nullptr) {
    throw std::runtime_error("the printer application framework cannot start");
  }
  papplSystemSetFooterHTML(system, "QuorIOPort");
  if (isForOthers) {
    papplSystemSetDNSSDName(system, "Receipt printers");
  }
  addModels(system);
  addRenderedDocuments(system);
  return system;
}

void makeFolder(const std::filesystem::path& folder) {
  std::error_code error;
  std::filesystem::create_directories(folder, error);
  if (error) {
    throw std::runtime_error("the folder " + folder.string() +
                             " cannot be created: " + error.message());
  }
}

// Loads the printers and the jobs as they were when the last process ended.
void load(pappl_system_t* system, std::string& file) {
  papplSystemSetSaveCallback(system, save, &file);
  letJobsWaitAgain(file);
  papplSystemLoadState(system, file.c_str());
  papplSystemAddTimerCallback(system, std::time(nullptr), 1, lookAfterJobs, &file);
  saveBeforeAnswers(system, file);
}

// Lets the framework listen. This is the last step, because clients can connect from then on.
void listen(pappl_system_t* system, const Settings& settings) {
  if (settings.isForOthers() && !setPassword(system, settings.passwordFile)) {
    throw std::runtime_error(
        "a server that listens to other machines needs -o password-file=FILE, a file whose first "
        "line is the password of the web page");
  }
  papplSystemAddListeners(system, settings.host == "*" ? nullptr : settings.host.c_str());
}

}  // namespace

pappl_system_t* makeSystem(int count, cups_option_t* options, void* /*data*/) {
  try {
    const Settings settings = settingsIn(count, options);
    makeFolder(settings.folder / "jobs");
    static std::string stateFile = settings.folder / "printers.conf";
    keepJobsIn(settings.folder / "journal.db", stateFile);
    markIncompleteUploads(settings.uploadTimeout);
    pappl_system_t* const system = createSystem(settings);
    load(system, stateFile);
    listen(system, settings);
    return system;
  } catch (const std::exception& error) {
    complain(error.what());
    return nullptr;
  }
}

}  // namespace quordalvane::printer_app
