// Files of formats that no program at hand writes, put together byte by byte as their layouts say,
// and the damaged ones among them with what is said of each.
#include <cstdio>
#include <cstring>
#include <map>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "statrn32/StFiles.h"

using namespace sttest;  // NOLINT: a test's own names
using testing::HasSubstr;

namespace {

std::string Shown(const Value& value, const Column& column) {
  if (value.status != ST_STATUS_PRESENT) return ".";
  if (column.type == ST_TYPE_STRING) return value.text;
  char text[40];
  std::snprintf(text, sizeof text, "%.15g", value.number);
  return text;
}

// "A B|1 x|. y": the names, then the records.
std::string Shown(const Table& table) {
  std::string text;
  for (const Column& column : table.columns) text += (text.empty() ? "" : " ") + column.name;
  for (const auto& record : table.records) {
    text += '|';
    for (std::size_t i = 0; i < record.size(); ++i) {
      text += (i == 0 ? "" : " ") + Shown(record[i], table.columns[i]);
    }
  }
  return text;
}

std::string Bytes16(std::initializer_list<unsigned> words) {
  std::string bytes;
  for (const unsigned word : words) {
    bytes += static_cast<char>(word & 0xFF);
    bytes += static_cast<char>(word >> 8);
  }
  return bytes;
}

std::string Padded(std::string text, std::size_t size, char filler = ' ') {
  text.resize(size, filler);
  return text;
}

std::string Doubles(std::initializer_list<double> numbers) {
  std::string bytes;
  for (const double number : numbers) {
    char raw[8];
    std::memcpy(raw, &number, 8);
    bytes.append(raw, 8);
  }
  return bytes;
}

// Two variables of 8 bytes each, the second one in small letters: a text.
std::string GaussHeader(unsigned variables = 2, unsigned element = 8) {
  std::string header = Bytes16({0xDADA, 0, 0, variables, variables * element, 128, element});
  header.resize(128, '\0');
  return header + Padded("SIZE", 9, '\0') + Padded("town", 9, '\0');
}

// The columns of a dictionary's record of OSIRIS.
std::string OsirisCard(int number, char kind, const char* name, int begin, int width, int decimals,
                       const char* code1, const char* code2) {
  char card[96];
  std::snprintf(card, sizeof card, "T%5d %c   %-24s%5d %5d %1d %5s %7s %7s", number, kind, name,
                begin, width, decimals, "1", code1, code2);
  return Padded(card, 80);
}

std::string OsirisDictionary() {
  return Padded("1       1    3", 80) + "\n" + OsirisCard(1, '0', "Age", 1, 3, 0, "99", "") + "\n" +
         OsirisCard(2, '1', "Town", 4, 4, 0, "", "") + "\n" +
         OsirisCard(3, '0', "Score", 8, 4, 1, "0", "900.0") + "\n";
}

std::string EpiField(const char* name, int type, int length, const char* question) {
  char line[128];
  std::snprintf(line, sizeof line, "%-11s%4d%4d%4d%4d%4d%5d%4d%4d %s\r\n", name, 1, 1, 30, 20, 1,
                type, length, 112, question);
  return line;
}

std::string EpiHeader() {
  return "6 1\r\n" + EpiField("#AGE", 0, 3, "How old") + EpiField("_TEXT1", 1, 0, "A heading") +
         EpiField("_BORN", 2, 10, "Date of birth") + EpiField("_SEEN", 11, 8, "") +
         EpiField("_ILL", 5, 1, "") + EpiField("_NAME", 1, 60, "");
}

std::string EpiRecord(const char* fields, const char* name, char mark) {
  const std::string record = Padded(fields, 22) + Padded(name, 60);
  return record.substr(0, 78) + mark + "\r\n" + record.substr(78) + mark + "\r\n";
}

struct Case {
  std::int32_t type;
  const char* file;
  std::map<std::string, std::string> files;
  std::string shows;
  const char* error;
};

const Case kCases[] = {
    {9,
     "g.dat",
     {{"g.dht", GaussHeader()},
      {"g.dat", Doubles({1.5}) + Padded("Ulm", 8, '\0') + Doubles({std::strtod("nan", nullptr)}) +
                    Padded("Bonn", 8, '\0')}},
     "SIZE town|1.5 Ulm|. Bonn",
     ""},
    {9,
     "g.dat",
     {{"g.dht", GaussHeader(2, 2)}, {"g.dat", Bytes16({7, 65535})}},
     "SIZE town|7 -1",
     ""},
    {9, "g.dat", {{"g.dat", Doubles({1})}}, "", "with .dht, is not beside it"},
    {9, "g.dat", {{"g.dht", GaussHeader(3000)}, {"g.dat", ""}}, "", "is damaged"},
    {9,
     "g.dat",
     {{"g.dht", GaussHeader(2, 2)}, {"g.dat", Bytes16({7, 65535, 8})}},
     "SIZE town|7 -1",
     "within the rows"},
    {9, "g.dat", {{"g.dht", "nothing"}, {"g.dat", ""}}, "", "none of Gauss"},
    {9,
     "g.dat",
     {{"g.dat", std::string("\xFF\xFF\xFF\xFF\0\0\0\0\xFF\xFF\xFF\xFF\0", 13)}},
     "",
     "of one file, which is not read"},
    {36,
     "o.dct",
     {{"o.dct", OsirisDictionary()}, {"o.dat", " 41Ulm  123\n 99Bonn8999\n  7    9000\n"}},
     "Age Town Score|41 Ulm 12.3|. Bonn 899.9|7  .",
     ""},
    {36,
     "o.dct",
     {{"o.dct", OsirisDictionary()}, {"o.dat", " 41Ulm  123 99Bonn1.25"}},
     "Age Town Score|41 Ulm 12.3|. Bonn 1.25",
     ""},
    {36,
     "o.dct",
     {{"o.dct", OsirisDictionary()}, {"o.dat", " 41Ulm  123 99Bo"}},
     "Age Town Score|41 Ulm 12.3",
     "ends within a record"},
    {36, "o.dct", {{"o.dct", OsirisDictionary()}}, "", "is not beside it"},
    {36,
     "o.dct",
     {{"o.dct", Padded("1       1    1", 80) + "\n" + OsirisCard(1, '3', "X", 1, 8, 0, "", "")}},
     "",
     "kind 3 are not read"},
    {32,
     "e.rec",
     {{"e.rec", EpiHeader() + EpiRecord(" 4112/31/199901/02/95Y", "Ann", '!') +
                    EpiRecord("  902/30/1999        N", "Gone", '?') +
                    EpiRecord("   02/30/1999        N", "Bea", '^')}},
     "AGE BORN SEEN ILL NAME|41 36525 34731 1 Ann|. . . 0 Bea",
     ""},
    {32, "e.rec", {{"e.rec", EpiHeader() + "short"}}, "AGE BORN SEEN ILL NAME", "cut off"},
    {32,
     "e.rec",
     {{"e.rec", EpiHeader() + Padded(" 41", 78) + "!\r\n"}},
     "AGE BORN SEEN ILL NAME",
     "ends within a record"},
    {17,
     "d.ssc",
     {{"d.ssc",
       "m\nstructure\n3\n.Data\nnumeric\n4\n1\n2\nN\n4\n.Dim\ninteger\n2\n2\n2\n"
       ".Dimnames\nlist\n2\n\nNULL\n0\n\ncharacter\n2\nleft\nright\n"}},
     "left right|1 .|2 4",
     ""},
    {17, "d.ssc", {{"d.ssc", "x\nnumeric\n3\n1\n2\n"}}, "", "line 5: the file ends"},
    {17, "d.ssc", {{"d.ssc", "x\nnumeric\n1\none\n"}}, "", "line 4: \"one\" is no number"},
    {17, "d.ssc", {{"d.ssc", "x\nlist\n1\ny\ncomplex\n1\n1+1i\n"}}, "", "\"complex\" is not read"},
};

TEST(Layouts, FilesShowWhatTheirLayoutSays) {
  for (const Case& c : kCases) {
    TempFolder folder;
    for (const auto& [name, bytes] : c.files) MakeFile(folder.Name(name), bytes);
    const Table table = ReadFile(c.type, folder.Name(c.file));
    SCOPED_TRACE(std::string(c.file) + ": " + c.shows + c.error);
    EXPECT_EQ(Shown(table), c.shows);
    if (*c.error == '\0') {
      EXPECT_EQ(table.error, "");
    } else {
      EXPECT_THAT(table.error, testing::AllOf(HasSubstr(c.error), HasSubstr(c.file)));
    }
  }
}

}  // namespace
