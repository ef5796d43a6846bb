#include "tools/printer-app/Model.h"

#include <algorithm>
#include <cstring>
#include <string>

namespace quordalvane::printer_app {
namespace {

constexpr Model models[] = {
    {"escpos-80", "ESC/POS receipt printer, 80 mm", ZKEmulationESCPOS, 576, 80},
    {"escpos-58", "ESC/POS receipt printer, 58 mm", ZKEmulationESCPOS, 384, 58},
    {"line-80", "Line mode receipt printer, 80 mm", ZKEmulationQuorLine, 576, 80},
    {"line-58", "Line mode receipt printer, 58 mm", ZKEmulationQuorLine, 384, 58},
};

constexpr const char* widePaper[] = {"om_80x200mm_80x200mm", "om_80x100mm_80x100mm",
                                     "om_80x297mm_80x297mm", "roll_min_80x20mm",
                                     "roll_max_80x2000mm"};
constexpr const char* narrowPaper[] = {"om_58x200mm_58x200mm", "om_58x100mm_58x100mm",
                                       "om_58x297mm_58x297mm", "roll_min_58x20mm",
                                       "roll_max_58x2000mm"};

constexpr int resolution = 203;
constexpr int usualLength = 20000;  // hundredths of a millimetre

template <std::size_t size>
void copy(char (&to)[size], const char* from) {
  std::strncpy(to, from, size - 1);
  to[size - 1] = '\0';
}

void describePaper(const Model& model, pappl_pr_driver_data_t& data) {
  const auto& media = model.paperMillimetres == 80 ? widePaper : narrowPaper;
  data.num_media = static_cast<int>(std::size(media));
  std::ranges::copy(media, data.media);
  data.num_source = 1;
  data.source[0] = "main-roll";
  data.num_type = 1;
  data.type[0] = "continuous";
  data.left_right = (model.paperMillimetres * 100 - static_cast<int>(model.dots) * 100 / 8) / 2;
  data.bottom_top = 100;
  pappl_media_col_t& ready = data.media_default;
  copy(ready.size_name, media[0]);
  copy(ready.source, data.source[0]);
  copy(ready.type, data.type[0]);
  ready.size_width = model.paperMillimetres * 100;
  ready.size_length = usualLength;
  ready.left_margin = ready.right_margin = data.left_right;
  ready.top_margin = ready.bottom_margin = data.bottom_top;
  data.media_ready[0] = ready;
}

void describeRaster(pappl_pr_driver_data_t& data) {
  data.num_resolution = 1;
  data.x_resolution[0] = data.y_resolution[0] = resolution;
  data.x_default = data.y_default = resolution;
  // Only grey pages are accepted, because the framework would itself convert all other pages to
  // dots. It would assume that a page has the size of the medium. If the page had another size, a
  // part of the page would be lost, or the framework would write past its buffer.
  data.raster_types = PAPPL_PWG_RASTER_TYPE_SGRAY_8;
  data.color_supported = PAPPL_COLOR_MODE_AUTO | PAPPL_COLOR_MODE_MONOCHROME;
  data.color_default = PAPPL_COLOR_MODE_MONOCHROME;
}

// Adds a job option; the first of its values is the default.
void addOption(pappl_pr_driver_data_t& data, ipp_t* attributes, const char* name,
               std::initializer_list<const char*> values) {
  data.vendor[data.num_vendor++] = name;
  const std::string text = name;
  ippAddString(attributes, IPP_TAG_PRINTER, IPP_TAG_KEYWORD, (text + "-default").c_str(), nullptr,
               *values.begin());
  ippAddStrings(attributes, IPP_TAG_PRINTER, IPP_TAG_KEYWORD, (text + "-supported").c_str(),
                static_cast<int>(values.size()), nullptr, values.begin());
}

// IPP Everywhere requires these attributes, and the framework does not set them.
void addFixedAttributes(ipp_t* attributes) {
  const auto addKeyword = [&](const char* name, const char* value) {
    ippAddString(attributes, IPP_TAG_PRINTER, IPP_TAG_KEYWORD, name, nullptr, value);
  };
  addKeyword("print-rendering-intent-default", "auto");
  addKeyword("print-rendering-intent-supported", "auto");
  addKeyword("pwg-raster-document-sheet-back", "normal");
  ippAddBoolean(attributes, IPP_TAG_PRINTER, "preferred-attributes-supported", 0);
}

}  // namespace

std::span<const Model> everyModel() {
  return models;
}

const Model* modelNamed(std::string_view name) {
  const auto* const found = std::ranges::find(
      models, name, [](const Model& model) { return std::string_view(model.name); });
  return found == std::end(models) ? nullptr : found;
}

void describe(const Model& model, pappl_pr_driver_data_t& data, ipp_t*& attributes) {
  copy(data.make_and_model, model.description);
  data.format = model.emulation == ZKEmulationESCPOS ? escPosType : lineModeType;
  data.ppm = 60;
  data.has_supplies = true;
  data.kind = PAPPL_KIND_RECEIPT | PAPPL_KIND_ROLL;
  data.orient_default = IPP_ORIENT_PORTRAIT;
  data.quality_default = IPP_QUALITY_NORMAL;
  data.content_default = PAPPL_CONTENT_AUTO;
  data.scaling_default = PAPPL_SCALING_AUTO;
  data.sides_supported = PAPPL_SIDES_ONE_SIDED;
  data.sides_default = PAPPL_SIDES_ONE_SIDED;
  data.duplex = PAPPL_DUPLEX_NONE;
  describePaper(model, data);
  describeRaster(data);
  data.identify_default = data.identify_supported = PAPPL_IDENTIFY_ACTIONS_SOUND;
  attributes = ippNew();
  addFixedAttributes(attributes);
  addOption(data, attributes, "quor-cut", {"document", "job", "page", "none"});
  addOption(data, attributes, "quor-drawer", {"none", "drawer-1", "drawer-2"});
}

}  // namespace quordalvane::printer_app
