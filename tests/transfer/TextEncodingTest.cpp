#include "transfer/TextEncoding.h"
#include "transfer/TextImportFixture.h"

using STUtils::TextEncoding;
using std::string_literals::operator""s;

namespace {

std::string Wide(const std::u16string& text, bool big) {
  std::string bytes;
  for (const char16_t unit : text) {
    const char low = static_cast<char>(unit & 0xFF);
    const char high = static_cast<char>(unit >> 8);
    bytes += big ? high : low;
    bytes += big ? low : high;
  }
  return bytes;
}

}  // namespace

TEST(TextEncoding, IsDetected) {
  const struct {
    const char* what;
    std::string bytes;
    TextEncoding encoding;
  } cases[] = {
      {"nothing", "", TextEncoding::Utf8},
      {"plain", "a,b\n1,2\n", TextEncoding::Utf8},
      {"UTF-8", "\xC3\xA4,b\n", TextEncoding::Utf8},
      {"UTF-8 cut in a character", "a\xE2\x82", TextEncoding::Utf8},
      {"Windows-1252", "\xE4,b\n", TextEncoding::Windows1252},
      {"mark of UTF-8",
       "\xEF\xBB\xBF"
       "a",
       TextEncoding::Utf8},
      {"mark, low first",
       "\xFF\xFE"
       "a\0"s,
       TextEncoding::Utf16Little},
      {"mark, high first", "\xFE\xFF\0a"s, TextEncoding::Utf16Big},
      {"no mark, low first", Wide(u"a,\u00E4\n1,2\n", false), TextEncoding::Utf16Little},
      {"no mark, high first", Wide(u"a,\u00E4\n1,2\n", true), TextEncoding::Utf16Big},
      {"zeros here and there", "1,2\n\0,3\n4,5\n"s, TextEncoding::Utf8},
  };
  for (const auto& c : cases) EXPECT_EQ(STUtils::DetectEncoding(c.bytes), c.encoding) << c.what;
}

TEST(TextEncoding, BecomesUtf8InPieces) {
  const std::u16string text = u"a\u00E4\u20AC\U0001F600,\xD800z\xDC00";
  const std::string expected = "a\xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80,\xEF\xBF\xBDz\xEF\xBF\xBD";
  for (const bool big : {false, true}) {
    const auto encoding = big ? TextEncoding::Utf16Big : TextEncoding::Utf16Little;
    const std::string bytes = Wide(text, big);
    for (std::size_t cut = 0; cut <= bytes.size(); ++cut) {
      std::string utf8;
      const std::size_t used = STUtils::AppendAsUtf8({bytes.data(), cut}, encoding, false, utf8);
      STUtils::AppendAsUtf8(bytes.substr(used), encoding, true, utf8);
      ASSERT_EQ(utf8, expected) << cut;
    }
  }
  std::string utf8;
  STUtils::AppendAsUtf8("a\x80\xE4", TextEncoding::Windows1252, true, utf8);
  EXPECT_EQ(utf8, "a\xE2\x82\xAC\xC3\xA4");
  utf8.clear();
  STUtils::AppendAsUtf8("a\0b"s, TextEncoding::Utf16Little, true, utf8);
  EXPECT_EQ(utf8, "a\xEF\xBF\xBD") << "half a character at the end";
}

TEST_F(TextImportTest, FilesOfEveryEncodingGiveTheSame) {
  const std::u16string text = u"\u00E4,b\n1,2\n3,\u20AC\n";
  const std::string files[] = {"\xC3\xA4,b\n1,2\n3,\xE2\x82\xAC\n",
                               "\xE4,b\n1,2\n3,\x80\n",
                               Wide(text, false),
                               Wide(text, true),
                               Wide(u'\xFEFF' + text, false),
                               Wide(u'\xFEFF' + text, true)};
  port.SetMissingStrings({"\xE2\x82\xAC"});
  for (const std::string& file : files) {
    ASSERT_TRUE(Import(file, 1003)) << Reason();
    EXPECT_EQ(Names(), (std::vector<CString>{"\xE4", "b"}));
    EXPECT_EQ(Rows(), (rows_t{{1, 2}, {3, M}}));
    EXPECT_TRUE(host.messages.empty());
  }
  ASSERT_TRUE(Import("\xC3\xA4,b\n1,2\n", 1003, {.encoding = TextEncoding::Windows1252}));
  EXPECT_EQ(Names().front(), "\xC3\x83\xC2\xA4") << "as chosen, not as detected";
}
