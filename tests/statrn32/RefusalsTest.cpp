// What is not read or written is refused by name: the message says what the file is and what would
// serve instead.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "statrn32/CompoundFile.h"
#include "statrn32/OutputFile.h"
#include "statrn32/StFiles.h"
#include "statrn32/ZipFile.h"

using namespace sttest;  // NOLINT: a test's own names
using testing::AllOf;
using testing::HasSubstr;

namespace {

using Parts = std::vector<std::pair<std::string, std::string>>;

void MakeZip(const std::string& name, const Parts& parts) {
  statrn32::COutputFile file;
  ASSERT_TRUE(file.Create(name));
  statrn32::CZipWriter zip(&file);
  for (const auto& [part, bytes] : parts) ASSERT_TRUE(zip.Store(part, bytes));
  ASSERT_TRUE(zip.Finish() && file.Close());
}

void MakeCompound(const std::string& name, const char* stream) {
  statrn32::CCompoundWriter file;
  std::string error;
  ASSERT_TRUE(file.Create(name, stream, &error)) << error;
  ASSERT_TRUE(file.Write(std::string(8000, 'x')) && file.Close());
}

class Refusals : public testing::Test {
 protected:
  void ExpectRefusal(std::int32_t type, const char* what, const char* serves) const {
    EXPECT_THAT(ReadFile(type, name_).error,
                AllOf(HasSubstr(name_), HasSubstr(what), HasSubstr(serves)))
        << type;
  }

  TempFolder folder_;
  std::string name_ = folder_.Name("file");
};

// Bytes of a record of an .xls file.
std::string XlsRecord(unsigned id, const std::string& body) {
  return {std::string{static_cast<char>(id), static_cast<char>(id >> 8),
                      static_cast<char>(body.size()), 0} +
          body};
}

TEST_F(Refusals, OfFilesByTheirFirstBytes) {
  const std::string compound = "\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1" + std::string(600, '\0');
  const std::string stata = "</release><byteorder>LSF</byteorder><K>" + std::string(400, '\0');
  // The key of an encrypted database stands scrambled in its header: zeros mean one.
  const auto access = [](char version) {
    return std::string("\0\1\0\0Standard ACE DB\0", 20) + version + std::string(8000, '\0');
  };
  const struct {
    std::int32_t type;
    std::string bytes;
    const char* what;
    const char* serves;
  } cases[] = {
      {7, XlsRecord(0x809, std::string("\0\x05\x10\0\0\0\0\0", 8)) + XlsRecord(0x2F, "key"),
       "protected by a password", "save it without one"},
      {900, compound, "of Excel 97 to 2003 (*.xls), or one protected", "the type Excel"},
      {12, "**COMPRESSED** **COMPRESSED**", "made by PROC CPORT", "PROC COPY and the XPORT engine"},
      {38, "**COMPRESSED** **COMPRESSED**", "made by PROC CPORT", "PROC COPY and the XPORT engine"},
      {14, "<stata_dta><header><release>120" + stata, "of the release 120", "saveold"},
      {14, "<stata_dta><header><release>999" + stata, "of the release 999", "saveold"},
      {22, "$FL9@(#) SPSS DATA FILE", "of a form that is not read", "*.por"},
      {22, std::string("\x1c\0\0\0\0\0\0\0ENCRYPTEDSAV", 20), "encrypted", "without a password"},
      {23, access(3), "the database is encrypted", "as an Excel workbook or as text"},
      {902, std::string(4096, '\x5a'), "encrypted (SQLCipher)", "as text (*.csv)"},
      {37, compound, "a Minitab worksheet or project", "*.mtp"},
      {30, compound, "of a later generation", "as an Excel workbook"},
      {35, "an older table", "no JMP table of version 5", "as a SAS transport file"},
      {17, std::string("\0S data\1", 8), "in binary form", "data.dump"},
      {20, "anything", "SAS V6 Data File", "SAS Transport File (*.stx)"},
      {33, "anything", "LIMDEP for Windows", "comma delimited text (*.csv)"},
      {34, "anything", "Mineset", "tab delimited text (*.txt)"},
  };
  for (const auto& c : cases) {
    MakeFile(name_, c.bytes);
    ExpectRefusal(c.type, c.what, c.serves);
  }
}

TEST_F(Refusals, OfPackagesByTheirParts) {
  constexpr int kXls = 7;
  constexpr int kXlsx = 900;
  constexpr int kOds = 901;
  const std::pair<std::string, std::string> kind = {
      "mimetype", "application/vnd.oasis.opendocument.spreadsheet"};
  const std::string list =
      "<manifest:manifest xmlns:manifest=\"m\"><manifest:file-entry><manifest:encryption-data/>"
      "</manifest:file-entry></manifest:manifest>";
  const struct {
    std::int32_t type;
    Parts parts;
    const char* what;
    const char* serves;
  } cases[] = {
      {kOds,
       {kind, {"META-INF/manifest.xml", list}, {"content.xml", "noise"}},
       "a spreadsheet protected by a password",
       "without one"},
      {kOds, {kind, {"encrypted-package", "noise"}}, "protected by a password", "without one"},
      {kXlsx,
       {{"[Content_Types].xml", "<Types/>"}, {"xl/workbook.bin", "x"}},
       "a binary workbook (.xlsb)",
       "save it as .xlsx"},
  };
  for (const auto& c : cases) {
    MakeZip(name_, c.parts);
    ExpectRefusal(c.type, c.what, c.serves);
  }
  MakeCompound(name_, "EncryptedPackage");
  EXPECT_EQ(ST_SniffFile(name_.c_str()), -1);  // its name alone says what it is
  ExpectRefusal(kXlsx, "protected by a password", "without");
  ExpectRefusal(kXls, "protected by a password", "without one");
}

TEST_F(Refusals, OfTypesThatAreNotWritten) {
  const struct {
    std::int32_t type;
    const char* serves;
  } cases[] = {{9, "*.csv"},
               {20, "SAS Transport File"},
               {21, "*.csv"},
               {23, "Access imports"},
               {30, "*.csv"},
               {33, "*.csv"},
               {34, "*.csv"},
               {35, "*.csv"},
               {38, "SAS Transport File"}};
  Table table;
  table.columns = {{"X", "", ST_TYPE_NUMERIC, 8, 2, {}}};
  for (const auto& c : cases) {
    EXPECT_THAT(WriteFile(table, c.type, name_).error,
                AllOf(HasSubstr(name_), HasSubstr("are not written"), HasSubstr(c.serves)))
        << c.type;
  }
}

}  // namespace
