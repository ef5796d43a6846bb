#include "tools/quorport/web/Forms.h"

#include <nlohmann/json.hpp>

#include "simulator/Faults.h"
#include "simulator/PrinterState.h"

namespace quordalvane::tool {
namespace {

using simulator::FaultPart;
using simulator::SettingForm;

// Splits the key of a flag into words: coverOpen becomes "cover open".
std::string wordsOf(std::string_view key) {
  std::string words;
  char before = 'A';
  for (const char c : key) {
    const bool isCapital = c >= 'A' && c <= 'Z';
    const bool beginsWord = isCapital && before >= 'a' && before <= 'z';
    words += beginsWord ? std::string{' ', c} : std::string{c};
    before = c;
  }
  for (std::size_t i = 0; i + 1 < words.size(); ++i) {
    const bool isWord = words[i] == ' ' && words[i + 2 < words.size() ? i + 2 : i + 1] >= 'a';
    words[i + 1] = isWord ? static_cast<char>(words[i + 1] | 0x20) : words[i + 1];
  }
  return words;
}

Json flags() {
  Json json = Json::array();
  for (std::size_t i = 0; i < simulator::flagCount; ++i) {
    json.push_back({{"key", simulator::flagNames[i]},
                    {"label", wordsOf(simulator::flagNames[i])},
                    {"group", simulator::flagGroups[i]}});
  }
  return json;
}

std::string_view nameOf(SettingForm::Kind kind) {
  switch (kind) {
    case SettingForm::Kind::Flag:
      return "flag";
    case SettingForm::Kind::Number:
      return "number";
    case SettingForm::Kind::Text:
      break;
  }
  return "text";
}

Json inJson(const SettingForm& form) {
  Json json = {{"key", form.key}, {"label", wordsOf(form.key)}, {"kind", nameOf(form.kind)}};
  if (form.kind == SettingForm::Kind::Number) {
    json.update({{"min", form.least}, {"max", form.most}});
  } else if (form.most > 0) {
    json["maxLength"] = form.most;
  }
  if (!form.choices.empty()) {
    json.update({{"choices", form.choices}, {"free", form.isFree}});
  }
  json["help"] = form.about;
  return json;
}

Json inJson(const FaultPart& part) {
  Json json = {{"before", part.before},
               {"label", part.label},
               {"kind", part.kind == FaultPart::Kind::Number ? "number" : "text"},
               {"optional", part.isOptional}};
  const auto choices = simulator::choicesOf(part.kind);
  if (!choices.empty()) {
    json.update({{"choices", choices}, {"free", part.kind == FaultPart::Kind::Reply}});
  }
  return json;
}

Json faults() {
  Json json = Json::array();
  for (const simulator::FaultForm& form : simulator::faultForms()) {
    Json parts = Json::array();
    for (const FaultPart& part : form.parts) {
      parts.push_back(inJson(part));
    }
    json.push_back({{"name", form.name},
                    {"takes", form.takes},
                    {"effect", form.effect},
                    {"parts", std::move(parts)}});
  }
  return json;
}

Json actions() {
  return Json::array(
      {{{"key", "tear"}, {"label", "tear off"}, {"line", {{"tear", "paper"}}}},
       {{"key", "test"}, {"label", "print a test receipt"}, {"line", {{"print", "test"}}}},
       {{"key", "clear"}, {"label", "clear all faults"}, {"line", {{"clear", "faults"}}}},
       {{"key", "quit"}, {"label", "quit"}, {"line", {{"quit", true}}}}});
}

}  // namespace

Json everyForm() {
  Json settings = Json::array();
  for (const SettingForm& form : simulator::settingForms()) {
    settings.push_back(inJson(form));
  }
  return {{"flags", flags()},
          {"settings", std::move(settings)},
          {"faults", faults()},
          {"actions", actions()}};
}

}  // namespace quordalvane::tool
