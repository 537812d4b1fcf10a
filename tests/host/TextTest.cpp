#include <gtest/gtest.h>

#include "host/Text.h"

TEST(TextForDisplay, TakesBytesAsUtf8OrWindows1252) {
  const struct {
    const char* bytes;
    const char* shown;
  } cases[] = {
      {"age", "age"},
      {"\xC3\xA4ge", "\xC3\xA4ge"},                      // UTF-8 stays
      {"\xE4ge", "\xC3\xA4ge"},                          // Windows-1252
      {"\x80", "\xE2\x82\xAC"},                          // the euro sign
      {"a\tb\n", "a b "},                                // control characters
      {"\xC3", "\xC3\x83"},                              // a cut UTF-8 character is Windows-1252
      {"\xED\xA0\x80", "\xC3\xAD\xC2\xA0\xE2\x82\xAC"},  // a surrogate is no UTF-8
      {"\xC0\xAF", "\xC3\x80\xC2\xAF"},                  // nor is an overlong form
  };
  for (const auto& c : cases) EXPECT_EQ(TextForDisplay(c.bytes), c.shown);
}

TEST(TextForFile, IsShownAsItWasEntered) {
  const char* const texts[] = {
      "plain",
      "\xC3\xA4\xC3\xB6",                  // fits Windows-1252
      "\xE2\x82\xAC",                      // so does the euro sign
      "\xD7\xA9\xD7\x9C\xD7\x95\xD7\x9D",  // Hebrew does not
      "\xC3\x83\xC2\xA4"};                 // fits, but its bytes would read as one other character
  for (const char* text : texts) EXPECT_EQ(TextForDisplay(TextForFile(text)), text);
  EXPECT_EQ(TextForFile("\xC3\xA4"), "\xE4");
}

TEST(CutText, FallsBetweenCharacters) {
  const struct {
    const char* bytes;
    std::size_t width;
    const char* cut;
  } cases[] = {{"abcdef", 3, "abc"},
               {"abc", 3, "abc"},
               {"a\xC3\xA4", 2, "a"},
               {"a\xC3\xA4", 3, "a\xC3\xA4"},
               {"\xE4\xE4\xE4", 2, "\xE4\xE4"},
               {"\xE2\x82\xAC", 2, ""},
               {"abc", 0, ""}};
  for (const auto& c : cases) EXPECT_EQ(CutText(c.bytes, c.width), c.cut);
}
