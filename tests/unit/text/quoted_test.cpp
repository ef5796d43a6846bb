#include "text/Quoted.h"

#include <gtest/gtest.h>

namespace quordalvane {
namespace {

TEST(QuotedText, EscapesControlCharactersAndLeavesLettersUnchanged) {
  EXPECT_EQ(printable("K\xc3\xbc"
                      "che\x1b\n"),
            "K\xc3\xbc"
            "che\\u001b\\n");
  EXPECT_EQ(inQuotes("K\xc3\xbc"
                     "che\x1b\n"),
            "\"K\xc3\xbc"
            "che\\u001b\\n\"");
}

TEST(QuotedText, CutsALongTextAfter60Bytes) {
  EXPECT_EQ(inQuotes(std::string(60, 'x')), '"' + std::string(60, 'x') + '"');
  EXPECT_EQ(inQuotes(std::string(61, 'x')), '"' + std::string(60, 'x') + "...\"");
}

TEST(QuotedText, ReplacesACharacterThatIsCutInHalf) {
  EXPECT_EQ(inQuotes(std::string(59, 'x') + "\xc3\xbc"),
            '"' + std::string(59, 'x') + "\xEF\xBF\xBD...\"");
}

}  // namespace
}  // namespace quordalvane
