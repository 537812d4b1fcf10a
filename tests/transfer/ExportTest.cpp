#include <cmath>
#include <limits>

#include <gtest/gtest.h>

#include "datadoc/DocumentFixture.h"
#include "support/FileSizeLimit.h"
#include "transfer/DataPort.h"
#include "transfer/TextExport.h"

using STUtils::eCANCELLED;
using STUtils::eFAILED;
using STUtils::eOK;

class Export : public DocumentTest {
 protected:
  STUtils::eRESULT ExportTo(const CString& name, int type) {
    CString chosen = name;
    return document.Export("/data/source.VSF", chosen, type);
  }
  static constexpr double M = kMissingCode;
};

TEST_F(Export, ATextFileHasASeparatorOfItsType) {
  Fill({{1, M, 2.5}, {1e-7, 100000, 1.0 / 3}});
  const struct {
    int type;
    const char* text;
  } cases[] = {{1001, "1,,2.5\n1e-07,100000,0.3333333333333333\n"},
               {1002, "1  2.5\n1e-07 100000 0.3333333333333333\n"},
               {1003, "1,,2.5\n1e-07,100000,0.3333333333333333\n"},
               {1004, "1;;2.5\n1e-07;100000;0.3333333333333333\n"},
               {1005, "1\t\t2.5\n1e-07\t100000\t0.3333333333333333\n"}};
  document.SetExportDelimiter(';');
  for (const auto& c : cases) {
    ASSERT_EQ(ExportTo(folder / "out.txt", c.type), eOK) << c.type;
    EXPECT_EQ(ReadBytes(folder / "out.txt"), c.text) << c.type;
  }
  document.SetExportNames(true);
  document.GetTorvik()->variable[1].name = "a \"b\\";
  ASSERT_EQ(ExportTo(folder / "out.txt", 1003), eOK);
  EXPECT_EQ(ReadBytes(folder / "out.txt").substr(0, 17), "\"A\",\"a \\\"b\\\\\",\"C\"");
}

TEST_F(Export, WithoutADelimiterTheTypeThatNeedsOneFails) {
  Fill({{1}});
  EXPECT_EQ(ExportTo(folder / "out.txt", 1004), eFAILED);
  EXPECT_EQ(folder.FileCount(), 0U);
}

TEST_F(Export, NoRecordsGiveAnEmptyTextFile) {
  document.SetExtern(EXTERNDATA(), {}, 0, 2, true);
  ASSERT_EQ(ExportTo(folder / "out.csv", 1003), eOK);
  EXPECT_EQ(ReadBytes(folder / "out.csv"), "");
}

TEST_F(Export, EveryDefinitionOfMissingLeavesAnEmptyField) {
  Fill({{1, 2}, {9, kNotSet}, {std::nan(""), 5}});
  document.GetTorvik()->variable[0].missing[0] = 9;
  document.GetTorvik()->variable[1].missing = {kNotSet, kNotSet, kNotSet, 4, 6};
  ASSERT_EQ(ExportTo(folder / "out.csv", 1003), eOK);
  EXPECT_EQ(ReadBytes(folder / "out.csv"), "1,2\n,\n,\n");
}

// Records leave in blocks, and numbers in more ways than one.
TEST_F(Export, EveryNumberHasTheTextOfAValueAlone) {
  constexpr double kInfinite = std::numeric_limits<double>::infinity();
  std::vector<std::vector<double>> rows = {
      {0, -0.0, kInfinite}, {-1, 0.5, -kInfinite}, {1e15, 1e16, 999.5}, {1e300, M, 5e-324}};
  for (int i = 0; i < 3000; ++i) rows.push_back({i * 1.0, -i * 37.0, i * 41.0 / 8});
  Fill(rows);
  document.GetTorvik()->variable[0].missing[0] = 7;
  document.GetTorvik()->variable[2].missing = {kNotSet, kNotSet, kNotSet, 100, 200};
  std::string expected;
  for (const auto& row : rows) {
    for (std::size_t i = 0; i < row.size(); ++i) {
      STUtils::variable_data_t value;
      value.kind = 1;
      value.value = row[i];
      value.missing = IsMissingCell(*document.GetTorvik(), row[i], i);
      STUtils::AppendValueText(value, expected);
      expected += i + 1 < row.size() ? '\t' : '\n';
    }
  }
  ASSERT_EQ(ExportTo(folder / "out.txt", 1005), eOK);
  EXPECT_EQ(ReadBytes(folder / "out.txt"), expected);
}

TEST_F(Export, WarnsOfWhatWillNotReadBack) {
  Fill({{1, 2}, {M, 3}});
  ASSERT_EQ(ExportTo(folder / "out.raw", 1002), eOK);
  EXPECT_EQ(host.messages.size(), 1U);
  ASSERT_EQ(ExportTo(folder / "out.csv", 1003), eOK);
  EXPECT_EQ(host.messages.size(), 1U);
  Fill({{M, M}, {1, 3}});
  ASSERT_EQ(ExportTo(folder / "out.csv", 1003), eOK);
  EXPECT_EQ(host.messages.size(), 2U);
}

TEST_F(Export, AForeignFileReadsBackAsItWas) {
  std::vector<std::vector<double>> rows;
  for (int i = 0; i < 3000; ++i) rows.push_back({i * 0.25, i % 7 == 0 ? M : i, -1.0 * i});
  Fill(rows);
  for (const auto& [file, type] : {std::pair{"out.sav", 22},
                                   {"out.zsav", 22},
                                   {"out.por", 13},
                                   {"out.dta", 14},
                                   {"out.xpt", 12}}) {
    ASSERT_EQ(ExportTo(folder / file, type), eOK) << file << ": " << host.LastMessage();
    CString name = folder / file;
    CString target = folder / "back.VSF";
    int importType = type;
    CDataPort port(nullptr);
    ASSERT_EQ(port.Import(name, importType, false, true, target), eOK)
        << file << ": " << host.LastMessage();
    CDataDoc back;
    CDataView backView(back);
    ASSERT_EQ(back.OnOpenDbmsDocument(target), 1);
    EXPECT_EQ(Rows(back, backView), rows) << file;
  }
}

TEST_F(Export, ChangedNamesAreTold) {
  Fill({{1, 2}});
  document.GetTorvik()->variable[0].name = "has a blank";
  ASSERT_EQ(ExportTo(folder / "out.sav", 22), eOK) << host.LastMessage();
  EXPECT_NE(host.LastMessage().find("has a blank becomes "), CString::npos) << host.LastMessage();
}

TEST_F(Export, WhatCannotBeWrittenIsRefusedByName) {
  Fill({{1}});
  WriteBytes(folder / "old.sas7bdat", "old");
  EXPECT_EQ(ExportTo(folder / "old.sas7bdat", 38), eFAILED);
  EXPECT_NE(host.LastMessage().find("SAS"), CString::npos);
  EXPECT_EQ(ReadBytes(folder / "old.sas7bdat"), "old");
  EXPECT_EQ(ExportTo(folder / "absent/out.csv", 1003), eFAILED);
  EXPECT_NE(host.LastMessage().find("No such file or directory"), CString::npos);
}

TEST_F(Export, TheDataSetsOwnFileIsRefused) {
  Fill({{1}});
  WriteBytes(folder / "own.csv", "old");
  std::filesystem::create_symlink(folder / "own.csv", folder / "link.csv");
  document.SetPathName(folder / "own.csv", false);
  EXPECT_EQ(ExportTo(folder / "link.csv", 1003), eFAILED);
  EXPECT_EQ(ReadBytes(folder / "own.csv"), "old");
}

TEST_F(Export, AStopLeavesWhatWasThere) {
  std::vector<std::vector<double>> rows(5000, {1, 2});
  Fill(rows);
  for (const auto& [file, type] : {std::pair{"out.csv", 1003}, {"out.sav", 22}}) {
    WriteBytes(folder / file, "old");
    host.cancelAtStep = host.progressSteps + 3;
    EXPECT_EQ(ExportTo(folder / file, type), eFAILED);
    EXPECT_EQ(ReadBytes(folder / file), "old");
    EXPECT_TRUE(host.messages.empty());
  }
  EXPECT_EQ(folder.FileCount(), 2U);
}

TEST_F(Export, AFullDiskIsToldAndLeavesWhatWasThere) {
  Fill(std::vector<std::vector<double>>(5000, {1, 2}));
  for (const auto& [file, type] : {std::pair{"out.csv", 1003}, {"out.dta", 14}}) {
    WriteBytes(folder / file, "old");
    host.messages.clear();
    {
      const FileSizeLimit limit(2000);
      EXPECT_EQ(ExportTo(folder / file, type), eFAILED);
    }
    ASSERT_FALSE(host.messages.empty()) << file;
    EXPECT_NE(host.messages[0].text.find("File too large"), CString::npos) << host.messages[0].text;
    EXPECT_EQ(ReadBytes(folder / file), "old");
  }
}

TEST_F(Export, AsksBesideTheDocumentAndShowsWhatItDoes) {
  Fill({{1}});
  document.SetPathName("/data/survey.VSF", false);
  EXPECT_FALSE(document.Export());  // cancelled
  EXPECT_EQ(host.dialogs.back().folder, "/data");
  EXPECT_EQ(host.dialogs.back().fileName, "survey.VSF");
  host.choices = {{{folder / "out.csv", 1}}};
  EXPECT_TRUE(document.Export());
  EXPECT_EQ(host.statusTexts.at(host.statusTexts.size() - 2), "Exporting...");
  EXPECT_EQ(ReadBytes(folder / "out.csv"), "1\n");
}

TEST(AppendValueText, FormatsByKind) {
  const struct {
    int kind;
    bool missing;
    const char* text;
    const char* expected;
  } cases[] = {{0, false, "", "2.5"},
               {1, false, "", "2.5"},
               {1, false, "as is", "as is"},
               {1, true, "x", ""},
               {2, false, "a\"b", "\"a\\\"b\""},
               {2, false, "", "\"\""},
               {4, false, "", "20200131"},
               {64, false, "", "2.5"},
               {3, false, "", ""},
               {99, false, "x", ""}};
  for (const auto& c : cases) {
    STUtils::variable_data_t value;
    value.kind = c.kind;
    value.missing = c.missing;
    value.value = 2.5;
    value.datePart1 = 20200131;
    value.text = c.text;
    std::string text;
    STUtils::AppendValueText(value, text);
    EXPECT_EQ(text, c.expected) << c.kind;
  }
}

// The file is never written to: it leads to the database.
TEST_F(Export, ADatabaseAsksForItsPassword) {
  Fill({{1, 2}});
  const CString name = folder / "people.sql";
  const std::string connection = "[ODBC]\nDRIVER=no such driver\n";
  WriteBytes(name, connection);
  for (const bool given : {false, true}) {
    int asked = 0;
    document.SetPasswordAsker([&](const CString& file, CString& password) {
      ++asked;
      EXPECT_EQ(file, name);
      password = "secret";
      return given;
    });
    host.messages.clear();
    EXPECT_EQ(ExportTo(name, 28), eFAILED);
    EXPECT_EQ(asked, 1);
    // Given up, the driver is not even looked for.
    EXPECT_EQ(host.messages.empty(), !given);
    EXPECT_EQ(ReadBytes(name), connection);
  }
  ASSERT_EQ(ExportTo(folder / "script.sql", 28), eOK);  // asks for nothing
}
