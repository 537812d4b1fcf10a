// Which formats there are, what they are recognised by, and what the refusals say.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "statrn32/StFiles.h"

using namespace sttest;  // NOLINT: a test's own names
using testing::AllOf;
using testing::HasSubstr;

namespace {

TEST(Registry, EveryFileTypeIsKnownByName) {
  const struct {
    std::int32_t code;
    const char* name;
    bool read;
    bool write;
  } types[] = {
      {23, "Access", true, false},
      {6, "dBASE", true, true},
      {7, "Excel", true, true},
      {32, "Epi Info", true, true},
      {9, "Gauss", true, false},
      {31, "HTML Table", true, true},
      {27, "Informix", true, true},
      {35, "JMP", true, false},
      {33, "LIMDEP for Windows", false, false},
      {0, "Lotus 1-2-3", true, true},
      {29, "Matlab Matrix", true, true},
      {34, "Mineset", false, false},
      {37, "Minitab", true, true},
      {36, "OSIRIS", true, true},
      {10, "Paradox", true, true},
      {11, "Quattro Pro", true, true},
      {17, "S-Plus", true, true},
      {38, "SAS Data File - Versions 7/8/9", true, false},
      {20, "SAS V6 Data File", false, false},
      {12, "SAS Transport File", true, true},
      {40, "SAS Program & Data File", true, true},
      {22, "SPSS Data File", true, true},
      {13, "SPSS Portable File", true, true},
      {39, "SPSS 'Syntax' & Data File", true, true},
      {14, "Stata", true, true},
      {41, "Stata Program & Data File", true, true},
      {30, "Statistica", true, false},
      {16, "Systat", true, true},
      {21, "SigmaPlot File", true, false},
      {25, "SQL Server (Sybase)", true, true},
      {28, "SQL Server (Microsoft)", true, true},
      {42, "Oracle", true, true},
      {44, "DB2", true, true},
  };
  TempFolder folder;
  const std::string name = folder.Name("file");
  MakeFile(name, "something");
  Table table;
  table.columns = {{"X", "", ST_TYPE_NUMERIC, 8, 2, {}}};
  for (const auto& type : types) {
    EXPECT_EQ(ST_CanRead(type.code), type.read) << type.name;
    EXPECT_EQ(ST_CanWrite(type.code), type.write) << type.name;
    // Scripts and programs are text without a signature: what is wrong with them is told instead.
    const bool text = type.code == 9 || (type.code >= 25 && type.code <= 28) ||
                      (type.code >= 39 && type.code <= 44);
    EXPECT_THAT(ReadFile(type.code, name).error,
                AllOf(HasSubstr(name), HasSubstr(text ? "" : type.name)));
    if (type.write) continue;
    EXPECT_THAT(WriteFile(table, type.code, name).error,
                AllOf(HasSubstr(name), HasSubstr(type.name)));
  }
  EXPECT_EQ(BytesOf(name), "something");
}

TEST(Registry, AnUnknownCodeIsToldAsSuch) {
  EXPECT_THAT(ReadFile(999, "x").error, HasSubstr("999"));
  EXPECT_FALSE(ST_CanRead(-1));
  EXPECT_FALSE(ST_CanWrite(1003));
}

// The first bytes of a table of version 7 with one field.
std::string ParadoxTable(char kind, std::uint32_t secret) {
  std::string bytes(400, '\0');
  bytes[0] = 8, bytes[3] = 8;  // bytes of a row and of the header
  bytes[4] = kind, bytes[5] = 2;
  bytes[0x21] = 1, bytes[0x39] = 12;
  bytes[0x78] = 6, bytes[0x79] = 8;
  for (std::size_t i = 0; i < 4; ++i) bytes[0x5C + i] = static_cast<char>(secret >> 8 * i);
  return bytes;
}

const std::string kCompound = "\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1" + std::string(600, '\0');
const std::string kEncryptedDbf =
    std::string("\x03\x64\1\1\0\0\0\0\x41\0\2\0\0\0\0\1", 16) + std::string(16, '\0') +
    std::string("X\0\0\0\0\0\0\0\0\0\0C", 12) + std::string(20, '\0') + "\r";

TEST(Registry, WhatIsNoFileOfTheTypeIsToldSo) {
  const struct {
    std::int32_t type;
    std::string bytes;
    const char* says;
  } cases[] = {
      {22, "", "the file is empty"},
      {22, "hello", "not a file of the type \"SPSS Data File\""},
      {22, "<stata_dta><header>", "those of \"Stata\""},
      {14, "$FL2@(#) SPSS DATA FILE", "those of \"SPSS Data File\""},
      {38, std::string(2000, '\0'), "not a file of the type \"SAS Data File"},
      {13, std::string(2000, ' '), "not a file of the type \"SPSS Portable File\""},
      {14, std::string("\0\1\0\0Standard Jet DB\0", 20), "those of \"Access\""},
      {17, "## Dump S Version 4 Dump ##\nx\n", "oldStyle = T"},
      {23, std::string("\0\1\0\0MSISAM Database\0", 20), "a file of Money"},
      {35, "$FL2@(#) SPSS DATA FILE", "those of \"SPSS Data File\""},
      {37, "PK\x03\x04 and more", "as a portable worksheet"},
      {37, "an old worksheet", "no portable Minitab worksheet"},
      {6, kEncryptedDbf, "the table is encrypted"},
      {10, ParadoxTable(0, 0x12345678), "the table is encrypted"},
      {10, ParadoxTable(1, 0), "an index of a Paradox table"},
      {21, kCompound, "damaged"},
  };
  TempFolder folder;
  const std::string name = folder.Name("file");
  for (const auto& c : cases) {
    MakeFile(name, c.bytes);
    EXPECT_THAT(ReadFile(c.type, name).error, AllOf(HasSubstr(name), HasSubstr(c.says)));
  }
}

TEST(Registry, WhatCannotBeOpenedIsToldWithTheReason) {
  TempFolder folder;
  EXPECT_THAT(ReadFile(22, folder.Name("none.sav")).error, HasSubstr("No such file"));
  EXPECT_THAT(ReadFile(22, folder.Name("")).error, HasSubstr("Is a directory"));
  EXPECT_THAT(ReadFile(22, "/dev/null").error, HasSubstr("seek"));
  EXPECT_THAT(ReadFile(22, "").error, HasSubstr("No file name"));
}

TEST(Registry, FilesAreRecognisedByTheirFirstBytes) {
  TempFolder folder;
  Table table;
  table.columns = {{"X", "", ST_TYPE_NUMERIC, 8, 2, {}}};
  table.records = {{Number(1)}};
  const std::string name = folder.Name("file");
  for (const std::int32_t type : {0, 11, 12, 13, 14, 16, 17, 22, 29, 32}) {
    ASSERT_EQ(WriteFile(table, type, name).error, "");
    EXPECT_EQ(ST_SniffFile(name.c_str()), type);
  }
  for (const char* const bytes : {"", "x", "no signature at all"}) {
    MakeFile(name, bytes);
    EXPECT_EQ(ST_SniffFile(name.c_str()), -1) << bytes;
  }
  EXPECT_EQ(ST_SniffFile(folder.Name("none").c_str()), -1);
  EXPECT_EQ(ST_SniffFile(folder.Name("").c_str()), -1);
}

TEST(Registry, CallsInTheWrongOrderFail) {
  ST_ENV* const env = ST_OpenEnvironment();
  EXPECT_EQ(ST_OpenOutFile(env, 22, "x.sav"), nullptr);
  EXPECT_THAT(ST_GetErrorMsg(env), HasSubstr("No variables"));
  EXPECT_NE(ST_AddUserVar(env, "X", ST_TYPE_NUMERIC, 8, 2), 0);
  ST_InitUserDict(env, 2);
  EXPECT_EQ(ST_AddUserVar(env, "X", ST_TYPE_NUMERIC, 8, 2), 0);
  EXPECT_NE(ST_AddUserVar(env, "Y", 77, 8, 2), 0);
  EXPECT_EQ(ST_OpenOutFile(env, 22, "x.sav"), nullptr);
  EXPECT_THAT(ST_GetErrorMsg(env), HasSubstr("Fewer variables"));
  EXPECT_EQ(ST_AddUserVar(env, "Y", ST_TYPE_NUMERIC, 8, 2), 0);
  EXPECT_EQ(ST_OpenOutFile(env, 22, "x.sav"), nullptr);
  EXPECT_THAT(ST_GetErrorMsg(env), HasSubstr("number of records"));
  EXPECT_EQ(ST_CloseEnvironment(env), 0);
}

TEST(Registry, NothingIsReadBeforeTheDictionary) {
  TempFolder folder;
  Table table;
  table.columns = {{"X", "", ST_TYPE_NUMERIC, 8, 2, {}}};
  table.records = {{Number(1)}};
  ASSERT_EQ(WriteFile(table, 22, folder.Name("x.sav")).error, "");
  ST_ENV* const env = ST_OpenEnvironment();
  ST_FILE* const file = ST_OpenInputFile(env, 22, folder.Name("x.sav").c_str());
  ASSERT_NE(file, nullptr);
  std::int32_t type = 0;
  std::int32_t display = 0;
  const void* value = nullptr;
  EXPECT_EQ(ST_ReadRecord(file), -1);
  EXPECT_EQ(ST_SelectAllVars(file), -1);
  ASSERT_EQ(ST_ReadDict(file), 1);
  EXPECT_EQ(ST_GetVarDataExt(file, 0, &type, &value, &display), ST_STATUS_ERROR);
  ASSERT_EQ(ST_ReadRecord(file), 1);
  EXPECT_EQ(ST_GetVarDataExt(file, 1, &type, &value, &display), ST_STATUS_ERROR);
  EXPECT_EQ(ST_GetVarDataExt(file, -1, &type, &value, &display), ST_STATUS_ERROR);
  EXPECT_EQ(ST_GetVarDataExt(file, 0, &type, &value, &display), ST_STATUS_PRESENT);
  EXPECT_EQ(ST_ReadRecord(file), 0);
  EXPECT_EQ(ST_ReadRecord(file), 0);
  EXPECT_EQ(ST_GetVarDataExt(file, 0, &type, &value, &display), ST_STATUS_ERROR);
  EXPECT_EQ(ST_GetProgress(file), 1.0);
  ST_CloseEnvironment(env);
}

}  // namespace
