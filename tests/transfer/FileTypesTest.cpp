#include <gtest/gtest.h>

#include "host/Recorder.h"
#include "transfer/FileTypes.h"
#include "transfer/OfnFilter.h"

using STUtils::file_type_info_t;
using STUtils::UNKNOWN_FILE_TYPE;

TEST(FileTypeRow, IsBuiltFromNameFilterAndExtension) {
  const struct {
    const char *name, *filter, *extension, *shown, *defaultExtension;
    std::vector<std::string> extensions;
  } cases[] = {
      {"Access", "*.mdb", nullptr, "Access (*.mdb)", "mdb", {"mdb"}},
      {"Quattro Pro", "*.wq?;*.wb?", ".wb2", "Quattro Pro (*.wq?;*.wb?)", ".wb2", {"wq?", "wb?"}},
      {"Two", "*.a*;*.bc", nullptr, "Two (*.a*;*.bc)", "bc", {"a*", "bc"}},
      {"Blank ", "*.x", nullptr, "Blank (*.x)", "x", {"x"}},
      {"Double", "*.tar.gz", nullptr, "Double (*.tar.gz)", "tar.gz", {"tar.gz"}},
      {"None", "", nullptr, "None ()", "", {}},
      {"All Files", "*.*", nullptr, "All Files (*.*)", "", {"*"}},
  };
  for (const auto& c : cases) {
    const file_type_info_t row(c.name, c.filter, c.extension, 1);
    EXPECT_EQ(row.displayName(), c.shown);
    EXPECT_EQ(row.defaultExtension(), c.defaultExtension) << c.name;
    EXPECT_EQ(row.extensions(), c.extensions) << c.name;
  }
}

TEST(FileTypeRow, NeedsANameAndAFilter) {
  const auto build = [](const char* name, const char* filter) {
    file_type_info_t(name, filter, nullptr, 1);
  };
  for (const auto& [name, filter] :
       {std::pair<const char*, const char*>{nullptr, "*.x"}, {"x", nullptr}}) {
    try {
      build(name, filter);
      ADD_FAILURE() << "no error";
    } catch (const std::invalid_argument& error) {
      EXPECT_STREQ(error.what(), "null pointer");
    }
  }
}

TEST(FileTypeRows, KeepTheirPeculiarities) {
  const auto& rows = STUtils::StatFileTypes();
  ASSERT_EQ(rows.size(), 34U);
  EXPECT_EQ(rows[4].type(), rows[5].type());  // both Gauss rows
  EXPECT_EQ(rows[10].type(), 0);              // Lotus
  EXPECT_EQ(rows[17].defaultExtension(), "ssc ");
  EXPECT_EQ(STUtils::TextFileTypes()[2].type(), 1005);
}

TEST(FileTypeRows, MatchExtensionsWithoutCaseAndBlanks) {
  CRecorder host;
  host.extraFileTypes = {{"Extra", "*.zsav", "", 22}, {"Late", "*.csv", "", 950}};
  const struct {
    const char* name;
    std::int32_t type;
  } cases[] = {{"a.sav", 22},
               {"A.SAV", 22},
               {"a.wk1", 0},
               {"a.wk", 0},
               {"a.wq1", 11},
               {"a.wq", UNKNOWN_FILE_TYPE},
               {"a.wq12", UNKNOWN_FILE_TYPE},
               {"a.html", 31},
               {"a.dat", 9},
               {"a.ssc", 17},
               {"a.zsav", 22},
               {"a.csv", 1003},
               {"a.VSF", UNKNOWN_FILE_TYPE},
               {"a", UNKNOWN_FILE_TYPE},
               {"a.", UNKNOWN_FILE_TYPE},
               {"dir.sav/a", UNKNOWN_FILE_TYPE},
               {".sav", UNKNOWN_FILE_TYPE},
               {"a.b.dta", 14}};
  for (const auto& c : cases) EXPECT_EQ(STUtils::TypeOfFileName(c.name), c.type) << c.name;
}

TEST(TransferDialog, TellsTheTypeFromTheNameOrTheRow) {
  CRecorder host;
  host.extraFileTypes = {{"Extra", "*.zsav", "", 22}};
  const auto rows = STUtils::TransferDialogFilter().Rows();
  ASSERT_EQ(rows.size(), 3U + 34U + 1U + 1U);
  EXPECT_EQ(rows[37].name(), "Extra");
  EXPECT_EQ(rows.back().name(), "All Files");
  const auto rowOf = [&](std::int32_t type) {
    for (std::size_t i = 0; i < rows.size(); ++i) {
      if (rows[i].type() == type) return static_cast<int>(i);
    }
    return -1;
  };
  const struct {
    const char* chosen;
    std::int32_t row;
    STUtils::eRESULT result;
    const char* name;
    std::int32_t type;
  } cases[] = {
      {"/d/data", 14, STUtils::eOK, "/d/data.dta", 14},
      {"/d/data", 0, STUtils::eOK, "/d/data.wk3", 0},        // an extension given with its dot
      {"/d/data.sav", 14, STUtils::eOK, "/d/data.sav", 22},  // the extension goes before the row
      {"/d/data.xyz", 14, STUtils::eFAILED, "/d/data.xyz", UNKNOWN_FILE_TYPE},
      {"/d/data", -1, STUtils::eFAILED, "/d/data", UNKNOWN_FILE_TYPE},
      {"/d/data.VSF", -1, STUtils::eFAILED, "/d/data.VSF", UNKNOWN_FILE_TYPE},
  };
  for (const auto& c : cases) {
    host.choices = {{{c.chosen, rowOf(c.row)}}};
    std::string name;
    std::int32_t type = 5;
    EXPECT_EQ(STUtils::AskForFileAndType(false, {}, {}, name, type), c.result) << c.chosen;
    EXPECT_EQ(name, c.name);
    EXPECT_EQ(type, c.type) << c.chosen;
  }
  EXPECT_EQ(host.dialogs.back().flags, 0x1800U);
  std::string name;
  std::int32_t type = 5;
  EXPECT_EQ(STUtils::AskForFileAndType(true, "/f", "n", name, type), STUtils::eCANCELLED);
  EXPECT_EQ(host.dialogs.back().flags, 0x802U);
  EXPECT_EQ(host.dialogs.back().folder, "/f");
}

TEST(ExportUtilityMap, HoldsItsOnePair) {
  const std::map<std::int32_t, std::int32_t> expected = {{1003, -2}};
  EXPECT_EQ(STUtils::cs_FILE_TYPE_TO_EXPORT_UTIL_FILE_TYPE_MAP, expected);
}
