#include "simulator/NationalSets.h"

#include <iterator>
#include <string_view>

namespace quordalvane::simulator {
namespace {

// The bytes that have different characters in different sets, written as their ASCII characters.
// Each text in `sets` lists the characters of one set for these bytes, in the same order.
constexpr std::string_view places = "#$@[\\]^`{|}~";

constexpr std::u32string_view sets[] = {
    U"#$@[\\]^`{|}~",                                                        // the United States
    U"#$\u00e0\u00b0\u00e7\u00a7^`\u00e9\u00f9\u00e8\u00a8",                 // France
    U"#$\u00a7\u00c4\u00d6\u00dc^`\u00e4\u00f6\u00fc\u00df",                 // Germany
    U"\u00a3$@[\\]^`{|}~",                                                   // the United Kingdom
    U"#$@\u00c6\u00d8\u00c5^`\u00e6\u00f8\u00e5~",                           // Denmark, first set
    U"#\u00a4\u00c9\u00c4\u00d6\u00c5\u00dc\u00e9\u00e4\u00f6\u00e5\u00fc",  // Sweden
    U"#$@\u00b0\\\u00e9^\u00f9\u00e0\u00f2\u00e8\u00ec",                     // Italy
    U"\u20a7$@\u00a1\u00d1\u00bf^`\u00a8\u00f1}~",                           // Spain, first set
    U"#$@[\u00a5]^`{|}~",                                                    // Japan
    U"#\u00a4\u00c9\u00c6\u00d8\u00c5\u00dc\u00e9\u00e6\u00f8\u00e5\u00fc",  // Norway
    U"#$\u00c9\u00c6\u00d8\u00c5\u00dc\u00e9\u00e6\u00f8\u00e5\u00fc",       // Denmark, second set
    U"#$\u00e1\u00a1\u00d1\u00bf\u00e9`\u00ed\u00f1\u00f3\u00fa",            // Spain, second set
    U"#$\u00e1\u00a1\u00d1\u00bf\u00e9\u00fc\u00ed\u00f1\u00f3\u00fa",       // Latin America
    U"#$@[\u20a9]^`{|}~",                                                    // Korea
    U"#$\u017d\u0160\u0110\u0106\u010c\u017e\u0161\u0111\u0107\u010d",       // Slovenia and Croatia
    U"#\u00a5@[\\]^`{|}~",                                                   // China
    U"#\u20ab@[\\]^`{|}~",                                                   // Vietnam
    U"#$@[\\]^`{|}~",                                                        // Arabia
};

}  // namespace

bool isNationalSet(std::uint8_t number) {
  return number < std::size(sets);
}

char32_t nationalCharacter(std::uint8_t number, std::uint8_t byte) {
  if (number == 0) {
    return byte;
  }
  const std::size_t place = places.find(static_cast<char>(byte));
  return place == std::string_view::npos ? char32_t{byte} : sets[number][place];
}

}  // namespace quordalvane::simulator
