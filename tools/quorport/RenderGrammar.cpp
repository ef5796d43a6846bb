#include "tools/quorport/RenderGrammar.h"

#include <CLI/CLI.hpp>

namespace quordalvane::tool {
namespace {

using Content = RenderOptions::Content;

// Of several the last one counts.
template <typename Value>
CLI::Option* addValue(CLI::App& app, const std::string& name, const std::string& type,
                      const std::string& help, Value& value) {
  return app.add_option(name, value, help)
      ->type_name(type)
      ->multi_option_policy(CLI::MultiOptionPolicy::TakeLast);
}

}  // namespace

void addRenderOptions(CLI::App& app, RenderOptions& options) {
  CLI::Option* const text = app.add_flag_callback(
      "--text", [&options] { options.content = Content::Text; },
      "FILE is UTF-8 text in any script: lines of the printer's own characters are sent as text, "
      "others are drawn");
  CLI::Option* const image = app.add_flag_callback(
      "--image", [&options] { options.content = Content::Picture; },
      "FILE is a picture in PNG or JPEG; one that is wider than the paper is made as narrow");
  text->excludes(image);
  addValue(app, "--width", "DOTS",
           "of the paper, for --text and --image: 384, 512, 576 or 832 (default 576)",
           options.width)
      ->check(CLI::IsMember({384, 512, 576, 832}).description(""));
  addValue(app, "--codepage", "N",
           "with --text, the printer's characters besides ASCII: the number of its code page, such "
           "as 16, or NUMBER:NAME, such as 6:1251",
           options.codePage)
      ->needs(text);
  app.add_flag_callback(
         "--ordered", [&options] { options.isOrdered = true; },
         "with --image, show grey by a regular pattern, which suits drawings better than "
         "photographs")
      ->needs(image);
  app.add_flag("--cut", options.cut, "cut the paper at the end");
  CLI::Option* const drawer =
      addValue(app, "--drawer", "1|2", "open this cash drawer, before anything is printed",
               options.drawer)
          ->check(CLI::Range(1, 2).description(""));
  app.add_flag("--drawer-after", options.drawerAfter, "open the drawer after all is printed")
      ->needs(drawer);
}

}  // namespace quordalvane::tool
