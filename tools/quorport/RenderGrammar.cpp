#include "tools/quorport/RenderGrammar.h"

#include <CLI/CLI.hpp>

namespace quordalvane::tool {
namespace {

using Content = RenderOptions::Content;

// If the option is repeated, the last one counts.
template <typename Value>
CLI::Option* addValue(CLI::App& app, const std::string& name, const std::string& type,
                      const std::string& help, Value& value) {
  return app.add_option(name, value, help)
      ->type_name(type)
      ->multi_option_policy(CLI::MultiOptionPolicy::TakeLast);
}

void addContent(CLI::App& app, RenderOptions& options, CLI::Option& file) {
  CLI::Option* const text = app.add_flag_callback(
      "--text", [&options] { options.content = Content::Text; },
      "print FILE as UTF-8 text in any script: lines of the printer's own characters are sent as "
      "text, other lines are drawn");
  CLI::Option* const image = app.add_flag_callback(
      "--image", [&options] { options.content = Content::Picture; },
      "print FILE as a picture in PNG or JPEG; if it is wider than the paper, it is shrunk");
  CLI::Option* const page = app.add_flag_callback(
      "--test-page",
      [&options, &file] {
        options.content = Content::TestPage;
        file.required(false);
      },
      "print all characters of the code page instead of FILE; each line is printed as text, and "
      "below as a picture; if text and picture differ, the printer lacks the code page");
  text->excludes(image);
  page->excludes(text)->excludes(image)->excludes(&file);
  CLI::Option* const codePage = addValue(app, "--codepage", "N",
                                         "with --text and --test-page, use this code page of the "
                                         "printer for characters outside ASCII; N is "
                                         "a number, such as 16, or NUMBER:NAME, such as 6:1251",
                                         options.codePage);
  page->needs(codePage);
  app.add_flag_callback(
         "--ordered", [&options] { options.isOrdered = true; },
         "show grey by a regular pattern, with --image; this suits drawings better than "
         "photographs")
      ->needs(image);
  app.parse_complete_callback([&options] {
    if (options.codePage && options.content != Content::Text &&
        options.content != Content::TestPage) {
      throw CLI::RequiresError("--codepage", "--text or --test-page");
    }
  });
}

void addSurroundings(CLI::App& app, RenderOptions& options) {
  addValue(app, "--width", "DOTS",
           "the width of the paper, for text and pictures: 384, 512, 576 or 832 (default 576)",
           options.width)
      ->check(CLI::IsMember({384, 512, 576, 832}).description(""));
  app.add_flag("--cut", options.cut, "cut the paper at the end");
  CLI::Option* const drawer =
      addValue(app, "--drawer", "1|2", "open this cash drawer before anything is printed",
               options.drawer)
          ->check(CLI::Range(1, 2).description(""));
  app.add_flag("--drawer-after", options.drawerAfter, "open the drawer after everything is printed")
      ->needs(drawer);
}

}  // namespace

void addRenderOptions(CLI::App& app, RenderOptions& options, CLI::Option& file) {
  addContent(app, options, file);
  addSurroundings(app, options);
}

}  // namespace quordalvane::tool
