#include <gtest/gtest.h>

#include "statrn32/TextDecoder.h"

using statrn32::CTextDecoder;

namespace {

TEST(TextDecoder, GivesUtf8WhateverTheFileHolds) {
  const std::string many(600, '\xe4');
  std::string manyUtf8;
  for (int i = 0; i < 600; ++i) manyUtf8 += "ä";
  const struct {
    const char* encoding;
    std::string bytes;
    std::string text;
  } cases[] = {
      {nullptr, "plain  ", "plain"},
      {nullptr, "  kept in front", "  kept in front"},
      {nullptr, "K\xc3\xb6ln", "Köln"},
      {nullptr, "K\xf6ln", "Köln"},
      {"", "\x80 5", "€ 5"},
      {"no such encoding", "K\xf6ln", "Köln"},
      {"WINDOWS-1252", "\x80uro", "€uro"},
      {"WINDOWS-1252", "a\x81z", "a\xef\xbf\xbdz"},
      {"WINDOWS-1251", "\xcc\xe8\xf0", "Мир"},
      {"UTF-8", "K\xc3\xb6ln", "Köln"},
      {"UTF-8", "K\xf6ln", "K\xef\xbf\xbdln"},
      {"UTF-8", "cut off \xc3", "cut off "},
      {"UTF-8", std::string("a\0b", 3), "a"},
      {"CP437", "\x84", "ä"},
      {"EBCDIC-US", "\xc1\xe9", "AZ"},
      {"ISO-8859-1", many, manyUtf8},
      {"ISO-8859-1", "", ""},
  };
  for (const auto& c : cases) {
    CTextDecoder decoder;
    decoder.SetEncoding(c.encoding);
    EXPECT_EQ(decoder.Decode(c.bytes), c.text) << (c.encoding != nullptr ? c.encoding : "none");
  }
}

}  // namespace
