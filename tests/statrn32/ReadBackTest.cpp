// Written files as other programs read them, where these are installed: R with its packages,
// gnumeric's ssconvert, pspp, the sqlite shell, Python's scipy. (Of Quattro Pro for DOS only libwps
// is at hand, through which RoundTripTest reads it.)
#include <cmath>
#include <cstdlib>
#include <fstream>
#include <limits>
#include <random>
#include <sstream>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "statrn32/StFiles.h"

using namespace sttest;  // NOLINT: a test's own names

namespace {

bool Runs(const std::string& command) {
  return std::system(("(" + command + ") >/dev/null 2>&1").c_str()) == 0;
}

// How another program shows a file as lines "number,number,text" without names; @F@ stands for
// the file, @O@ for where the lines go, @S@ for the script.
struct Reader {
  std::int32_t type;
  const char* file;
  const char* there;    // succeeds where the program is installed
  const char* command;  // what is run
  const char* script;   // for R and Python: written before
  double tolerance;     // relative, of formats or readers that do not hold a double
  bool names = false;   // the first line holds the names
  bool texts = true;    // of a format that holds them
};

void PrintTo(const Reader& reader, std::ostream* out) {
  *out << reader.file;
}

constexpr const char* kForeign = "Rscript -e 'library(foreign)'";
constexpr const char* kR = "Rscript @S@";
constexpr const char* kPrintR =
    "write.table(d, '@O@', sep = ',', quote = FALSE, na = '', row.names = FALSE, "
    "col.names = FALSE)\n";

constexpr Reader kReaders[] = {
    {0, "t.wk1", "ssconvert --version", "ssconvert @F@ @O@.csv && mv @O@.csv @O@", "", 1e-14, true},
    {6, "t.dbf", kForeign, kR, "d <- foreign::read.dbf('@F@', as.is = TRUE)\n", 1e-12},
    {7, "t.xls", "Rscript -e 'library(readxl)'", kR, "d <- readxl::read_xls('@F@')\n", 1e-14},
    {12, "t.xpt", kForeign, kR, "d <- foreign::read.xport('@F@')\n", 1e-14},
    {13, "t.por", kForeign, kR,
     "d <- foreign::read.spss('@F@', to.data.frame = TRUE, use.value.labels = FALSE)\n", 1e-14},
    {14, "t.dta", "Rscript -e 'library(haven)'", kR, "d <- haven::read_dta('@F@')\n", 1e-14},
    {16, "t.syd", kForeign, kR, "d <- foreign::read.systat('@F@')\n", 1e-14},
    {17, "t.ssc", kForeign, kR, "foreign::data.restore('@F@')\nd <- data\n", 1e-14},
    {22, "t.sav", kForeign, kR,
     "d <- foreign::read.spss('@F@', to.data.frame = TRUE, use.value.labels = FALSE)\n", 1e-14},
    {29, "t.mat", "/usr/bin/python3 -c 'import scipy'", "/usr/bin/python3 @S@",
     "import scipy.io, math\n"
     "m = scipy.io.loadmat('@F@')\n"
     "f = lambda x: '' if math.isnan(x) else repr(float(x))\n"
     "with open('@O@', 'w') as out:\n"
     "  for a, b, s in zip(m['A'], m['B'], m['S']):\n"
     "    out.write('%s,%s,%s\\n' % (f(a[0]), f(b[0]), s.rstrip()))\n",
     0},
    {32, "t.rec", kForeign, kR, "d <- foreign::read.epiinfo('@F@')\n", 1e-7},
    // It leaves the number that means missing as it is, and rounds to six digits.
    {37, "t.mtp", kForeign, kR, "d <- as.data.frame(foreign::read.mtp('@F@'))\nd[d > 1e30] <- NA\n",
     1e-5, false, false},
    {39, "t.sps", "pspp --version", "pspp -o @O@.txt @S@",
     "INSERT FILE='@F@'.\nSAVE TRANSLATE /OUTFILE='@O@' /TYPE=CSV /REPLACE.\n", 1e-14},
    {900, "t.xlsx", "Rscript -e 'library(readxl)'", kR, "d <- readxl::read_xlsx('@F@')\n", 1e-14},
    {901, "t.ods", "ssconvert --version", "ssconvert @F@ @O@.csv && mv @O@.csv @O@", "", 1e-14,
     true},
    {902, "t.sqlite", "sqlite3 --version", "sqlite3 -csv @F@ 'SELECT * FROM data' > @O@", "",
     1e-14},
    {903, "t.jsonl", "Rscript -e 'library(jsonlite)'", kR,
     "d <- jsonlite::stream_in(file('@F@'))\n", 1e-14},
};

class ReadBack : public testing::TestWithParam<Reader> {
 protected:
  void SetUp() override {
    if (!Runs(GetParam().there)) {
      GTEST_SKIP() << "not installed; it answers to: " << GetParam().there;
    }
  }
  std::string Filled(std::string text) const {
    for (const auto& [word, file] : {std::pair<const char*, const char*>{"@F@", GetParam().file},
                                     {"@O@", "out"},
                                     {"@S@", "script"}}) {
      for (std::size_t at = 0; (at = text.find(word, at)) != std::string::npos;) {
        text.replace(at, std::string(word).size(), folder_.Name(file));
      }
    }
    return text;
  }
  // The fields of the lines that the other program makes.
  std::vector<std::vector<std::string>> Fields() const {
    const Reader& reader = GetParam();
    std::string script = reader.script;
    if (std::string(reader.command) == kR) script = "options(digits = 17)\n" + script + kPrintR;
    MakeFile(folder_.Name("script"), Filled(script));
    EXPECT_TRUE(Runs(Filled(reader.command)));
    std::ifstream in(folder_.Name("out"));
    std::vector<std::vector<std::string>> rows;
    for (std::string line; std::getline(in, line);) {
      if (!line.empty() && line.back() == '\r') line.pop_back();
      auto& row = rows.emplace_back();
      std::istringstream fields(line);
      for (std::string field; std::getline(fields, field, ',');) row.push_back(field);
      row.resize(3);
    }
    if (reader.names && !rows.empty()) rows.erase(rows.begin());
    return rows;
  }

  TempFolder folder_;
};

INSTANTIATE_TEST_SUITE_P(Formats, ReadBack, testing::ValuesIn(kReaders));

std::string WithoutBlanks(std::string text) {
  if (!text.empty() && text.front() == '"') text = text.substr(1, text.size() - 2);
  text.erase(text.find_last_not_of(' ') + 1);
  return text;
}

TEST_P(ReadBack, AnotherProgramFindsTheSameValues) {
  const Reader& reader = GetParam();
  Table table;
  table.columns = {{"A", "first", ST_TYPE_NUMERIC, 12, 3, {}},
                   {"B", "", ST_TYPE_NUMERIC, 12, 0, {}},
                   {"S", "", ST_TYPE_STRING, 8, 0, {}}};
  std::mt19937 random(5);
  for (int i = 0; i < 200; ++i) {
    const double wide =
        (random() / 7.0 - 3e8) * std::pow(10.0, static_cast<int>(random() % 12) - 6);
    table.records.push_back({i % 5 == 1 ? Missing() : Number(wide), Number(i % 97 - 40),
                             Text("t" + std::to_string(i))});
  }
  if (!reader.texts) {
    table.columns.pop_back();
    for (auto& record : table.records) record.pop_back();
  }
  ASSERT_EQ(WriteFile(table, reader.type, folder_.Name(reader.file)).error, "");
  const auto rows = Fields();
  ASSERT_EQ(rows.size(), table.records.size());
  for (std::size_t i = 0; i < rows.size(); ++i) {
    const auto& record = table.records[i];
    const std::string first = WithoutBlanks(rows[i][0]);
    if (record[0].status != ST_STATUS_PRESENT) {
      EXPECT_EQ(first, "") << "record " << i;
    } else {
      const double number = std::strtod(first.c_str(), nullptr);
      EXPECT_NEAR(number, record[0].number, std::fabs(record[0].number) * reader.tolerance)
          << "record " << i << ": " << first;
    }
    EXPECT_EQ(std::strtod(rows[i][1].c_str(), nullptr), record[1].number) << "record " << i;
    if (!reader.texts) continue;
    EXPECT_EQ(WithoutBlanks(rows[i][2]), record[2].text) << "record " << i;
  }
}

}  // namespace
