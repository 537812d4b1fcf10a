// Small files that independent programs made; tests/data/README.md tells how, and gives the
// figures.
#include <algorithm>
#include <cmath>
#include <numeric>

#include "host/Text.h"
#include "support/TestData.h"
#include "transfer/ImportedColumns.h"

namespace {

struct Figure {
  const char* name;
  double sum;
  std::size_t missing;
};

void Check(const std::string& file, const std::vector<Figure>& figures) {
  ImportedColumns imported;
  const auto columns = imported.Import(TestData(file));
  EXPECT_EQ(imported.cases, 6) << file;
  for (const Figure& figure : figures) {
    const auto name =
        std::find_if(imported.names.begin(), imported.names.end(),
                     [&](const CString& n) { return EqualIgnoringCase(n, figure.name); });
    ASSERT_NE(name, imported.names.end()) << file << ": " << figure.name;
    const auto& column = columns[static_cast<std::size_t>(name - imported.names.begin())];
    EXPECT_EQ(6 - column.size(), figure.missing) << file << ": " << figure.name;
    const double sum = std::accumulate(column.begin(), column.end(), 0.0);
    EXPECT_NEAR(sum, figure.sum, 1e-12 * std::max(1.0, std::fabs(figure.sum)))
        << file << ": " << figure.name;
  }
}

}  // namespace

TEST(ImportTestData, TheSurveyIsTheSameFromEverySpssFile) {
  const std::vector<Figure> common = {{"id", 21, 0},
                                      {"score", 12.25, 3},
                                      {"group", 6, 2},
                                      {"height", 852.4, 1},
                                      {"answer", 0, 3},
                                      {"day", 52353820800, 1},
                                      {"moment", 52353977759, 1},
                                      {"clock", 156722, 1}};
  const struct {
    const char* file;
    const char* longName;
  } files[] = {{"survey.sav", "averylongvariabl"},
               {"survey-packed.sav", "averylongvariabl"},
               {"survey.zsav", "averylongvariabl"},
               {"survey-v2.sav", "AVERYLON"},
               {"survey.por", "LONGNAME"}};
  for (const auto& [file, longName] : files) {
    std::vector<Figure> figures = common;
    figures.push_back({longName, 123456789.6, 3});
    Check(file, figures);
  }
}

TEST(ImportTestData, MissingValuesWithALetterAreMissing) {
  for (const char* file :
       {"survey-118.dta", "survey-115.dta", "utf8-115.dta", "survey-v5.xpt", "survey-v8.xpt"}) {
    Check(file, {{"score", 12.25, 3}, {"group", 6, 2}});
  }
}

TEST(ImportTestData, FilesWithoutCasesKeepTheirVariables) {
  for (const auto& [file, variables] : {std::pair{"nocases.sav", 12U}, {"nocases.dta", 9U}}) {
    ImportedColumns imported;
    EXPECT_EQ(imported.Import(TestData(file)).size(), variables) << file;
    EXPECT_EQ(imported.cases, 0);
  }
}
