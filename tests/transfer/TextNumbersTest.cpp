// Records read straight into cells hold what records of values hold.
#include <bit>
#include <random>

#include <gtest/gtest.h>

#include "host/statrn32.h"
#include "support/TempFolder.h"
#include "transfer/TextImport.h"

using reader_t = STUtils::basic_text_import_t<char>;

namespace {

constexpr double kMissing = -999999.0;

// A text file with all that a field may be, and how it is to be read.
struct TextCase {
  std::string text;
  std::vector<STUtils::variable_info_t> variables;
  STUtils::TextSettings settings;
  std::vector<std::string> missing;
  int type = 1003;
};

template <class Choices>
auto AnyOf(const Choices& choices, std::mt19937& random) {
  return choices[random() % std::size(choices)];
}

// Mostly answers and measurements, so that the quick ways are gone and left at every place.
std::string AnyField(std::mt19937& random, char mark) {
  static const char* const kOthers[] = {
      "",        "NA",      "nil",    " NA ",      " 5",    "7 ",  "\"8\"",
      "\" 9\"",  "x",       "NAN",    "N",         "12abc", "1e",  "1e5",
      "-2.5E-3", "1.5D+03", "+3",     "-",         ".",     "-0",  "0.0",
      "007",     "1e400",   "1e-400", "\"a,\nb\"", "\"\"",  "1 2", "123456789012345678901",
      "\t4\t",   "-.5",     "5.",     "99",        "-9"};
  std::string field;
  switch (random() % 8) {
    case 0:
      return AnyOf(kOthers, random);
    case 1:
      return std::to_string(static_cast<int>(random()));
    case 2:
    case 3:
      field = std::to_string(random());
      field.insert(random() % field.size(), 1, mark);
      return random() % 2 == 0 ? "-" + field : field;
    default:
      return std::string(1, static_cast<char>('0' + random() % 10));
  }
}

TextCase AnyCase(unsigned seed) {
  std::mt19937 random(seed);
  TextCase made;
  made.type = AnyOf(std::vector{1003, 1003, 1003, 1003, 1005, 1001, 1002}, random);
  const bool comma = random() % 4 == 0;
  made.settings.decimalMark = comma ? ',' : '.';
  if (made.type == 1003 && comma) made.settings.delimiter = ';';
  const char separator = made.type == 1005 ? '\t' : made.settings.delimiter != 0 ? ';' : ',';
  made.missing = AnyOf(
      std::vector<std::vector<std::string>>{
          {"NA", "NIL"}, {"N", "NA", "."}, {"99", "-9", "x"}, {"12abc", "-"}},
      random);
  const std::size_t columns = 1 + random() % 20;
  for (std::size_t i = 0; i < columns; ++i) {
    STUtils::variable_info_t variable;
    variable.type = random() % 12 == 0 ? ST_TYPE_STRING : ST_TYPE_NUMERIC;
    variable.selected = random() % 12 != 0;
    made.variables.push_back(variable);
  }
  const std::string end = AnyOf(std::vector<std::string>{"\n", "\r\n", "\r"}, random);
  for (int line = 0; line < 60; ++line) {
    std::size_t fields = random() % 10 == 0 ? random() % (columns + 1) : columns;
    for (std::size_t i = 0; i < fields; ++i) {
      made.text += AnyField(random, made.settings.decimalMark);
      if (i + 1 < fields || random() % 30 == 0) made.text += separator;
    }
    if (line == 58 && random() % 8 == 0) made.text += "1,2,3;4\t5";
    made.text += end;
  }
  return made;
}

// What has been read, and what was told of it.
struct ReadText {
  std::vector<std::uint64_t> cells;
  std::vector<std::int64_t> unreadable;
  std::string error;

  bool operator==(const ReadText&) const = default;
};

class TextNumbers : public testing::Test {
 protected:
  void Start(reader_t& reader, const TextCase& c) {
    ASSERT_TRUE(reader.Open(name_, c.type) && reader.Configure(c.settings)) << reader.Error();
    reader.SetMissingStrings(STUtils::CMissingStrings(c.missing));
    reader.SetHasNames(false);
    reader.SetVariables(c.variables);
    reader.StartRecords();
  }
  static void Finish(const reader_t& reader, ReadText& read) {
    for (const auto& fields : reader.Unreadable()) {
      read.unreadable.insert(read.unreadable.end(), {fields.count, fields.firstLine});
    }
    read.error = reader.Error();
  }
  ReadText ByValues(const TextCase& c) {
    reader_t reader;
    Start(reader, c);
    ReadText read;
    std::vector<STUtils::variable_data_t> values(c.variables.size());
    while (reader.ReadRecord(values)) {
      for (std::size_t i = 0; i < values.size(); ++i) {
        if (!c.variables[i].selected) continue;
        const bool missing = c.variables[i].type == ST_TYPE_STRING || values[i].missing ||
                             reader.Missing().HasNumber(values[i].value);
        read.cells.push_back(std::bit_cast<std::uint64_t>(missing ? kMissing : values[i].value));
      }
    }
    Finish(reader, read);
    return read;
  }
  ReadText ByCells(const TextCase& c, std::size_t records) {
    reader_t reader;
    Start(reader, c);
    ReadText read;
    std::vector<double> cells(records * reader.SelectedColumns() + reader_t::kSpareCells);
    while (const std::size_t got = reader.ReadNumbers(kMissing, cells)) {
      if (reader.SelectedColumns() == 0) continue;
      EXPECT_LE(got, records);
      for (std::size_t i = 0; i < got * reader.SelectedColumns(); ++i) {
        read.cells.push_back(std::bit_cast<std::uint64_t>(cells[i]));
      }
    }
    Finish(reader, read);
    return read;
  }

  const TempFolder folder_;
  const std::string name_ = folder_ / "text.csv";
};

}  // namespace

TEST_F(TextNumbers, AreWhatTheValuesOfTheRecordsAre) {
  std::size_t cells = 0;
  for (unsigned seed = 1; seed <= 600; ++seed) {
    const TextCase c = AnyCase(seed);
    WriteBytes(name_, c.text);
    const ReadText expected = ByValues(c);
    cells += expected.cells.size();
    ASSERT_EQ(ByCells(c, 1 + seed % 50), expected) << "seed " << seed << ", type " << c.type << '\n'
                                                   << c.text;
  }
  EXPECT_GT(cells, 100'000U);
}
