// The commands of the three program languages that describe data.
#include <algorithm>
#include <charconv>
#include <map>

#include "host/Text.h"
#include "host/statrn32.h"
#include "statrn32/ProgramFiles.h"
#include "statrn32/ProgramReader.h"

namespace statrn32 {
namespace {

using TOKENS = std::vector<PROGRAM_TOKEN>;

// Goes through the tokens of a command.
class CTokens {
 public:
  explicit CTokens(TOKENS tokens) : tokens_(std::move(tokens)) {}
  const PROGRAM_TOKEN& Peek(std::size_t ahead = 0) const {
    return tokens_[std::min(at_ + ahead, tokens_.size() - 1)];
  }
  PROGRAM_TOKEN Take() {
    PROGRAM_TOKEN token = Peek();
    if (at_ + 1 < tokens_.size()) ++at_;
    return token;
  }
  bool TakeIf(std::string_view word) {
    if (!Peek().Is(word)) return false;
    Take();
    return true;
  }
  bool AtEnd() const { return Peek().kind == PROGRAM_TOKEN::End; }

 private:
  TOKENS tokens_;
  std::size_t at_ = 0;
};

bool ParseInt(std::string_view text, int* number) {
  constexpr int kMost = 1 << 20;
  const auto [stop, failed] = std::from_chars(text.data(), text.data() + text.size(), *number);
  return failed == std::errc() && stop == text.data() + text.size() && *number >= 0 &&
         *number <= kMost;
}

PROGRAM_COLUMN ColumnNamed(std::string name) {
  PROGRAM_COLUMN column;
  column.variable.name = std::move(name);
  column.variable.type = ST_TYPE_NUMERIC;
  column.variable.width = 8;
  column.variable.decimals = 2;
  return column;
}

// "F8.2", "A12", "$CHAR12.", "12.2": what a format says of a column.
void UseFormat(std::string_view format, VARIABLE* variable) {
  const FORMAT_PARTS parts = SplitFormat(format);
  const bool text = parts.name.substr(0, 1) == "$" || EqualIgnoringCase(parts.name, "A");
  if (text) variable->type = ST_TYPE_STRING;
  if (parts.width > 0) variable->width = parts.width;
  variable->decimals = text ? 0 : std::max(0, parts.decimals);
}

// Value labels from here to the end of the command: a value, then its label.
void ReadValueLabels(CTokens* in, LABEL_SET* set) {
  while (!in->AtEnd() && !in->Peek().Is("/") && !in->Peek().Is(",")) {
    VALUE_LABEL label;
    const bool negative = in->TakeIf("-");
    const PROGRAM_TOKEN value = in->Take();
    in->TakeIf("=");
    const PROGRAM_TOKEN text = in->Take();
    label.isText = value.kind == PROGRAM_TOKEN::Text;
    label.text = value.text;
    label.label = text.text;
    const auto& digits = value.text;
    const auto parsed = std::from_chars(digits.data(), digits.data() + digits.size(), label.number);
    if (negative) label.number = -label.number;
    const bool number = parsed.ec == std::errc() && parsed.ptr == digits.data() + digits.size();
    if (text.kind == PROGRAM_TOKEN::Text && (label.isText || number)) set->push_back(label);
  }
}

class CSpssProgramReader final : public CProgramReader {
 public:
  CSpssProgramReader() : CProgramReader(39) {}

 protected:
  bool ReadProgram(PROGRAM_DATA* data) override;

 private:
  bool ReadCommand(const std::string& command, std::int64_t line, PROGRAM_DATA* data);
  bool ReadDataList(CTokens* in, PROGRAM_DATA* data);
  bool ReadVariables(CTokens* in, PROGRAM_DATA* data);
  bool ReadPlace(CTokens* in, std::size_t firstNew, PROGRAM_DATA* data);
  void ReadLabels(CTokens* in, PROGRAM_DATA* data);
  void ReadMissing(CTokens* in, PROGRAM_DATA* data);
};

// A command ends with a full stop at the end of a line or with an empty line.
bool CSpssProgramReader::ReadProgram(PROGRAM_DATA* data) {
  std::string line;
  std::string command;
  std::int64_t begin = 1;
  while (Lines().Next(&line)) {
    std::string_view text = Trimmed(line);
    if (command.empty()) begin = Lines().Number();
    const bool ends = text.empty() || text.back() == '.';
    if (!text.empty() && text.back() == '.') text.remove_suffix(1);
    if (command.empty() && EqualIgnoringCase(text, "BEGIN DATA")) {
      data->firstLine = Lines().Number() + 1;
      data->end = "END DATA";
      while (Lines().Next(&line)) {
        std::string_view end = Trimmed(line);
        if (!end.empty() && end.back() == '.') end.remove_suffix(1);
        if (EqualIgnoringCase(end, data->end)) break;
      }
      continue;
    }
    command.append(text) += '\n';
    if (!ends) continue;
    if (!ReadCommand(command, begin, data)) return false;
    command.clear();
  }
  return Trimmed(command).empty() || ReadCommand(command, begin, data);
}

bool CSpssProgramReader::ReadCommand(const std::string& command, std::int64_t line,
                                     PROGRAM_DATA* data) {
  constexpr std::string_view kHarmless[] = {
      "SET",    "EXECUTE", "EXE",   "TITLE", "SUBTITLE",    "SAVE",        "FORMATS", "MEASURE",
      "LIST",   "PRINT",   "SHOW",  "*",     "COMMENT",     "FILE",        "DISPLAY", "NEW",
      "FINISH", "DATASET", "CACHE", "XSAVE", "FREQUENCIES", "DESCRIPTIVES"};
  CTokens in(SplitCommand(command, line, ".@#$"));
  const PROGRAM_TOKEN first = in.Take();
  const PROGRAM_TOKEN second = in.Peek();
  if (first.kind == PROGRAM_TOKEN::End) return true;
  if (first.Is("DATA") && second.Is("LIST")) return in.Take(), ReadDataList(&in, data);
  if (first.Is("VARIABLE") && (second.Is("LABELS") || second.Is("LABEL"))) {
    in.Take();
    while (!in.AtEnd()) {
      PROGRAM_COLUMN* const column = FindColumn(data, in.Take().text);
      if (column != nullptr && in.Peek().kind == PROGRAM_TOKEN::Text) {
        column->variable.label = in.Take().text;
      }
    }
    return true;
  }
  if ((first.Is("VALUE") || first.Is("ADD")) && !second.Is("FILES")) {
    while (!in.AtEnd() && !in.Peek().Is("LABELS") && !in.Peek().Is("LABEL")) in.Take();
    in.Take();
    ReadLabels(&in, data);
    return true;
  }
  if (first.Is("MISSING")) {
    in.Take();
    ReadMissing(&in, data);
    return true;
  }
  if (first.Is("VARIABLE")) return true;  // level, width, alignment
  for (const std::string_view word : kHarmless) {
    if (first.Is(word)) return true;
  }
  return FailLine(line, "the command " + first.text + " is not understood here");
}

bool CSpssProgramReader::ReadDataList(CTokens* in, PROGRAM_DATA* data) {
  bool list = false;
  while (!in->AtEnd() && !in->Peek().Is("/")) {
    const PROGRAM_TOKEN word = in->Take();
    if (word.Is("FREE") || word.Is("LIST")) {
      list = true;
      data->flows = word.Is("FREE");
      if (in->TakeIf("(")) {
        while (!in->AtEnd() && !in->TakeIf(")")) {
          const PROGRAM_TOKEN mark = in->Take();
          data->separators += mark.Is("TAB")                     ? "\t"
                              : mark.kind == PROGRAM_TOKEN::Text ? mark.text
                                                                 : "";
        }
      }
    } else if (word.Is("FILE")) {
      in->TakeIf("=");
      data->file = in->Take().text;
    } else if (word.Is("SKIP")) {
      int lines = 0;
      in->TakeIf("=");
      if (ParseInt(in->Take().text, &lines)) data->firstLine = lines + 1;
    } else if (word.Is("RECORDS")) {
      in->TakeIf("=");
      if (!in->Take().Is("1")) return FailLine(word.line, "records of several lines are not read");
    } else if (word.Is("ENCODING")) {
      in->TakeIf("=");
      in->Take();
    }
  }
  in->TakeIf("/");
  in->TakeIf("1");
  if (!ReadVariables(in, data)) return false;
  for (const PROGRAM_COLUMN& column : data->columns) {
    if (list == (column.begin < 0)) continue;
    return FailLine(in->Peek().line, "the variable " + column.variable.name +
                                         (list ? " has columns in a list" : " has no columns"));
  }
  return true;
}

// Names, then a format in parentheses or columns, then the next names.
bool CSpssProgramReader::ReadVariables(CTokens* in, PROGRAM_DATA* data) {
  std::size_t firstNew = data->columns.size();
  while (!in->AtEnd()) {
    const PROGRAM_TOKEN token = in->Peek();
    int number = 0;
    if (token.Is("/")) return FailLine(token.line, "records of several lines are not read");
    if (token.Is("*") || token.Is(",")) {
      in->Take();
      if (token.Is("*")) firstNew = data->columns.size();  // the default format
    } else if (token.Is("(") || ParseInt(token.text, &number)) {
      if (!ReadPlace(in, firstNew, data)) return false;
      firstNew = data->columns.size();
    } else if (token.kind == PROGRAM_TOKEN::Word && !token.Is("TO")) {
      data->columns.push_back(ColumnNamed(in->Take().text));
    } else {
      return FailLine(token.line, "\"" + token.text + "\" is not understood here");
    }
  }
  return true;
}

// "1-8 (A)", "9", "(F8.2)": for the variables since `firstNew`, which share columns evenly.
bool CSpssProgramReader::ReadPlace(CTokens* in, std::size_t firstNew, PROGRAM_DATA* data) {
  const std::int64_t line = in->Peek().line;
  const auto count = static_cast<int>(data->columns.size() - firstNew);
  int first = 0;
  if (count == 0) return FailLine(line, "a name is expected");
  if (ParseInt(in->Peek().text, &first)) {
    int last = first;
    in->Take();
    if (in->TakeIf("-") && !ParseInt(in->Take().text, &last)) return FailLine(line, "a column");
    const int width = (last - first + 1) / count;
    if (first < 1 || width < 1) return FailLine(line, "columns that do not fit their variables");
    for (int i = 0; i < count; ++i) {
      PROGRAM_COLUMN& column = data->columns[firstNew + static_cast<std::size_t>(i)];
      column.begin = first - 1 + i * width;
      column.width = column.variable.width = width;
      column.variable.decimals = 0;
    }
  }
  if (!in->TakeIf("(")) return true;
  const PROGRAM_TOKEN format = in->Take();
  int decimals = 0;
  const bool implied = ParseInt(format.text, &decimals);
  for (std::size_t i = firstNew; i < data->columns.size(); ++i) {
    PROGRAM_COLUMN& column = data->columns[i];
    if (implied) {
      column.impliedDecimals = column.variable.decimals = decimals;
    } else {
      UseFormat(format.text, &column.variable);
    }
  }
  return in->TakeIf(")") || FailLine(line, "a closing parenthesis is expected");
}

void CSpssProgramReader::ReadLabels(CTokens* in, PROGRAM_DATA* data) {
  while (!in->AtEnd()) {
    const auto set = static_cast<int>(data->labelSets.size());
    std::size_t named = 0;
    while (in->Peek().kind == PROGRAM_TOKEN::Word) {
      PROGRAM_COLUMN* const column = FindColumn(data, in->Peek().text);
      if (column == nullptr) break;
      column->variable.labelSet = set;
      in->Take();
      ++named;
    }
    data->labelSets.emplace_back();
    ReadValueLabels(in, &data->labelSets.back());
    if (!in->TakeIf("/") && named == 0) in->Take();
  }
}

// Names, then up to three values or a range in parentheses.
void CSpssProgramReader::ReadMissing(CTokens* in, PROGRAM_DATA* data) {
  std::vector<PROGRAM_COLUMN*> columns;
  while (!in->AtEnd()) {
    if (!in->TakeIf("(")) {
      PROGRAM_COLUMN* const column = FindColumn(data, in->Take().text);
      if (column != nullptr) columns.push_back(column);
      continue;
    }
    std::vector<MISSING_RANGE> ranges;
    bool through = false;
    while (!in->AtEnd() && !in->TakeIf(")")) {
      double value = 0;
      const bool negative = in->TakeIf("-");
      const PROGRAM_TOKEN token = in->Take();
      if (token.Is("THRU")) through = true;
      if (!ParseProgramNumber(token.text, &value)) continue;
      if (negative) value = -value;
      if (through && !ranges.empty()) {
        ranges.back().high = value;
      } else {
        ranges.push_back({value, value, {}, {}});
      }
      through = false;
    }
    for (PROGRAM_COLUMN* const column : columns) column->variable.missing = ranges;
    columns.clear();
  }
}

class CSasProgramReader final : public CProgramReader {
 public:
  CSasProgramReader() : CProgramReader(40) {}

 protected:
  bool ReadProgram(PROGRAM_DATA* data) override;

 private:
  bool ReadStatement(const std::string& statement, std::int64_t line, PROGRAM_DATA* data);
  void ReadInfile(CTokens* in, PROGRAM_DATA* data);
  bool ReadInput(CTokens* in, PROGRAM_DATA* data);
  void ReadLength(CTokens* in);

  std::map<std::string, LABEL_SET> formats_;
  std::map<std::string, int> textLengths_;
  std::vector<std::pair<std::string, std::string>> uses_;    // variable, format
  std::vector<std::pair<std::string, std::string>> labels_;  // variable, label
};

std::string Upper(std::string text) {
  for (char& c : text) {
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
  }
  return text;
}

// Statements end with a semicolon; data begin behind DATALINES or CARDS.
bool CSasProgramReader::ReadProgram(PROGRAM_DATA* data) {
  std::string line;
  std::string statement;
  std::int64_t begin = 1;
  char quote = 0;
  data->flows = false;
  while (Lines().Next(&line)) {
    const std::string_view text = Trimmed(line);
    for (const char* const word : {"DATALINES", "CARDS", "LINES", "DATALINES4", "CARDS4"}) {
      const std::string card = std::string(word) + ";";
      if (!Trimmed(statement).empty() || !EqualIgnoringCase(text, card)) continue;
      data->firstLine = Lines().Number() + 1;
      data->end = card[card.size() - 2] == '4' ? ";;;;" : ";";
      while (Lines().Next(&line) && Trimmed(line) != data->end) continue;
      line.clear();
      break;
    }
    for (const char c : line) {
      if (Trimmed(statement).empty()) begin = Lines().Number();
      if (quote != 0) {
        if (c == quote) quote = 0;
      } else if (c == '"' || c == '\'') {
        quote = c;
      } else if (c == ';') {
        if (!ReadStatement(statement, begin, data)) return false;
        statement.clear();
        continue;
      }
      statement += c;
    }
    statement += '\n';
  }
  for (const auto& [name, label] : labels_) {
    PROGRAM_COLUMN* const column = FindColumn(data, name);
    if (column != nullptr) column->variable.label = label;
  }
  for (const auto& [name, format] : uses_) {
    PROGRAM_COLUMN* const column = FindColumn(data, name);
    const auto set = formats_.find(format);
    if (column == nullptr || set == formats_.end()) continue;
    column->variable.labelSet = static_cast<int>(data->labelSets.size());
    data->labelSets.push_back(set->second);
  }
  return true;
}

bool CSasProgramReader::ReadStatement(const std::string& statement, std::int64_t line,
                                      PROGRAM_DATA* data) {
  constexpr std::string_view kHarmless[] = {"OPTIONS", "PROC",  "RUN",     "DATA",     "TITLE", "*",
                                            "QUIT",    "PRINT", "LIBNAME", "FILENAME", "VAR"};
  CTokens in(SplitCommand(statement, line, ".$"));
  const PROGRAM_TOKEN first = in.Take();
  if (first.kind == PROGRAM_TOKEN::End) return true;
  if (first.Is("INFILE")) {
    ReadInfile(&in, data);
  } else if (first.Is("INPUT")) {
    return ReadInput(&in, data);
  } else if (first.Is("LENGTH")) {
    ReadLength(&in);
  } else if (first.Is("LABEL")) {
    while (!in.AtEnd()) {
      const PROGRAM_TOKEN name = in.Take();
      if (in.TakeIf("=")) labels_.emplace_back(name.text, in.Take().text);
    }
  } else if (first.Is("VALUE")) {
    const std::string name = Upper(in.Take().text);
    ReadValueLabels(&in, &formats_[name]);
  } else if (first.Is("FORMAT")) {
    std::vector<std::string> names;
    while (!in.AtEnd()) {
      std::string word = in.Take().text;
      if (word.find('.') == std::string::npos) {
        names.push_back(word);
        continue;
      }
      word = Upper(word.substr(0, word.find('.')));
      for (const std::string& name : names) uses_.emplace_back(name, word);
      names.clear();
    }
  } else {
    for (const std::string_view word : kHarmless) {
      if (first.Is(word)) return true;
    }
    return FailLine(line, "the statement " + first.text + " is not understood here");
  }
  return true;
}

void CSasProgramReader::ReadInfile(CTokens* in, PROGRAM_DATA* data) {
  const PROGRAM_TOKEN file = in->Take();
  if (file.kind == PROGRAM_TOKEN::Text) data->file = file.text;
  while (!in->AtEnd()) {
    const PROGRAM_TOKEN option = in->Take();
    int line = 0;
    if (option.Is("DSD") && data->separators.empty()) data->separators = ",";
    if (option.Is("DLM") || option.Is("DELIMITER")) {
      in->TakeIf("=");
      data->separators = in->Take().text;
    } else if (option.Is("FIRSTOBS") && in->TakeIf("=") && ParseInt(in->Take().text, &line)) {
      data->firstLine = line;
    }
  }
}

void CSasProgramReader::ReadLength(CTokens* in) {
  std::vector<std::string> names;
  while (!in->AtEnd()) {
    const PROGRAM_TOKEN word = in->Take();
    int length = 0;
    if (word.text.substr(0, 1) == "$") {
      const std::string digits = word.text.size() > 1 ? word.text.substr(1) : in->Take().text;
      ParseInt(digits.substr(0, digits.find('.')), &length);
      for (const std::string& name : names) textLengths_[Upper(name)] = std::max(1, length);
      names.clear();
    } else if (ParseInt(word.text, &length)) {
      names.clear();
    } else {
      names.push_back(word.text);
    }
  }
}

// "NAME $ 5-12", "@5 NAME $CHAR8.", "NAME", with "$" for a text.
bool CSasProgramReader::ReadInput(CTokens* in, PROGRAM_DATA* data) {
  int place = -1;
  while (!in->AtEnd()) {
    const PROGRAM_TOKEN token = in->Take();
    int first = 0;
    if (token.Is("@")) {
      if (!ParseInt(in->Peek().text, &place)) continue;  // "@@" and "@" hold the line
      in->Take();
    } else if (token.Is("#") || token.Is("/")) {
      return FailLine(token.line, "records of several lines are not read");
    } else if (token.text.substr(0, 1) == "$" || token.text.find('.') != std::string::npos ||
               token.Is(":")) {
      if (data->columns.empty()) return FailLine(token.line, "a name is expected");
      PROGRAM_COLUMN& column = data->columns.back();
      UseFormat(token.text, &column.variable);
      if (place >= 1 && token.text.find('.') != std::string::npos) {
        column.begin = place - 1;
        column.width = column.variable.width;
        column.impliedDecimals = column.variable.decimals;
        place += column.width;
      }
    } else if (ParseInt(token.text, &first) && first >= 1 && !data->columns.empty()) {
      PROGRAM_COLUMN& column = data->columns.back();
      int last = first;
      if (in->TakeIf("-")) ParseInt(in->Take().text, &last);
      if (last < first) return FailLine(token.line, "columns that end before they begin");
      column.begin = first - 1;
      column.width = column.variable.width = last - first + 1;
      column.variable.decimals = 0;
    } else if (token.kind == PROGRAM_TOKEN::Word) {
      PROGRAM_COLUMN column = ColumnNamed(token.text);
      const auto length = textLengths_.find(Upper(token.text));
      if (length != textLengths_.end()) {
        column.variable.type = ST_TYPE_STRING;
        column.variable.width = length->second;
        column.variable.decimals = 0;
      }
      data->columns.push_back(std::move(column));
    } else {
      return FailLine(token.line, "\"" + token.text + "\" is not understood here");
    }
  }
  for (const PROGRAM_COLUMN& column : data->columns) {
    if ((column.begin < 0) == (data->columns.front().begin < 0)) continue;
    return FailLine(in->Peek().line, "columns and lists are mixed");
  }
  return true;
}

class CStataProgramReader final : public CProgramReader {
 public:
  CStataProgramReader() : CProgramReader(41) {}

 protected:
  bool ReadProgram(PROGRAM_DATA* data) override;

 private:
  bool ReadCommand(const std::string& line, PROGRAM_DATA* data);
  void ReadVariables(CTokens* in, PROGRAM_DATA* data);
  void ReadLabel(CTokens* in, PROGRAM_DATA* data);

  std::map<std::string, LABEL_SET> sets_;
  std::vector<std::pair<std::string, std::string>> uses_;  // variable, set
};

bool CStataProgramReader::ReadProgram(PROGRAM_DATA* data) {
  std::string line;
  std::string command;
  while (Lines().Next(&line)) {
    command += line;
    if (command.size() >= 3 && command.ends_with("///")) {
      command.resize(command.size() - 3);
      continue;
    }
    if (!ReadCommand(command, data)) return false;
    command.clear();
  }
  for (const auto& [name, set] : uses_) {
    PROGRAM_COLUMN* const column = FindColumn(data, name);
    if (column == nullptr || sets_.count(set) == 0) continue;
    column->variable.labelSet = static_cast<int>(data->labelSets.size());
    data->labelSets.push_back(sets_[set]);
  }
  return true;
}

bool CStataProgramReader::ReadCommand(const std::string& line, PROGRAM_DATA* data) {
  constexpr std::string_view kHarmless[] = {"CLEAR",    "VERSION", "SET",      "*",    "SAVE",
                                            "COMPRESS", "FORMAT",  "DESCRIBE", "LIST", "EXIT",
                                            "MORE",     "QUIETLY", "/"};
  CTokens in(SplitCommand(line, Lines().Number(), "."));
  const PROGRAM_TOKEN first = in.Take();
  if (first.kind == PROGRAM_TOKEN::End) return true;
  if (first.Is("INPUT")) {
    std::string data_line;
    ReadVariables(&in, data);
    data->firstLine = Lines().Number() + 1;
    data->end = "END";
    while (Lines().Next(&data_line) && !EqualIgnoringCase(Trimmed(data_line), data->end)) continue;
    return true;
  }
  if (first.Is("INFILE") || first.Is("INFIX")) {
    ReadVariables(&in, data);
    if (!in.TakeIf("USING")) return FailLine(first.line, "using is expected");
    data->file = in.Take().text;
    data->flows = first.Is("INFILE");
    return true;
  }
  if (first.Is("LABEL")) {
    ReadLabel(&in, data);
    return true;
  }
  for (const std::string_view word : kHarmless) {
    if (first.Is(word)) return true;
  }
  return FailLine(first.line, "the command " + first.text + " is not understood here");
}

// "double AGE str12 TOWN", for infix with columns behind each name.
void CStataProgramReader::ReadVariables(CTokens* in, PROGRAM_DATA* data) {
  int textBytes = 0;
  while (!in->AtEnd() && !in->Peek().Is("USING")) {
    const PROGRAM_TOKEN token = in->Take();
    int number = 0;
    const bool text = token.text.size() > 3 && token.text.substr(0, 3) == "str" &&
                      ParseInt(token.text.substr(3), &number);
    if (text || token.Is("STR") || token.Is("STRL")) {
      textBytes = std::max(1, number);
    } else if (token.Is("DOUBLE") || token.Is("FLOAT") || token.Is("LONG") || token.Is("INT") ||
               token.Is("BYTE")) {
      textBytes = 0;
    } else if (ParseInt(token.text, &number) && number >= 1 && !data->columns.empty()) {
      PROGRAM_COLUMN& column = data->columns.back();
      int last = number;
      if (in->TakeIf("-")) ParseInt(in->Take().text, &last);
      column.begin = number - 1;
      column.width = std::max(1, last - number + 1);
    } else if (token.kind == PROGRAM_TOKEN::Word) {
      PROGRAM_COLUMN column = ColumnNamed(token.text);
      if (textBytes > 0) {
        column.variable.type = ST_TYPE_STRING;
        column.variable.width = textBytes;
        column.variable.decimals = 0;
      }
      textBytes = 0;
      data->columns.push_back(std::move(column));
    }
  }
}

void CStataProgramReader::ReadLabel(CTokens* in, PROGRAM_DATA* data) {
  const PROGRAM_TOKEN what = in->Take();
  const std::string name = in->Take().text;
  if (what.Is("VARIABLE") || what.Is("VAR")) {
    PROGRAM_COLUMN* const column = FindColumn(data, name);
    if (column != nullptr) column->variable.label = in->Take().text;
  } else if (what.Is("DEFINE") || what.Is("DEF")) {
    ReadValueLabels(in, &sets_[name]);
  } else if (what.Is("VALUES") || what.Is("VAL")) {
    uses_.emplace_back(name, in->Take().text);
  }
}

}  // namespace

std::unique_ptr<CReader> ReadSpssProgram() {
  return std::make_unique<CSpssProgramReader>();
}
std::unique_ptr<CReader> ReadSasProgram() {
  return std::make_unique<CSasProgramReader>();
}
std::unique_ptr<CReader> ReadStataProgram() {
  return std::make_unique<CStataProgramReader>();
}

}  // namespace statrn32
