// The statements of SAS that describe data.
#include <algorithm>
#include <charconv>
#include <map>

#include "host/Text.h"
#include "host/statrn32.h"
#include "statrn32/ProgramFiles.h"
#include "statrn32/ProgramTokens.h"

namespace statrn32 {
namespace {

class CSasProgramReader final : public CProgramReader {
 public:
  CSasProgramReader() : CProgramReader(40) {}

 protected:
  bool ReadProgram(PROGRAM_DATA* data) override;

 private:
  bool SkipData(const std::string& end, std::string* line);
  bool ReadStatement(const std::string& statement, std::int64_t line, PROGRAM_DATA* data);
  bool ReadInfile(CTokens* in, PROGRAM_DATA* data);
  bool ReadInfileOption(CTokens* in, PROGRAM_DATA* data);
  bool ReadInput(CTokens* in, PROGRAM_DATA* data);
  bool ReadAt(CTokens* in, PROGRAM_DATA* data);
  bool ReadInformat(const PROGRAM_TOKEN& token, PROGRAM_DATA* data);
  bool ReadColumns(int first, CTokens* in, PROGRAM_DATA* data);
  void ReadInputName(const std::string& name, PROGRAM_DATA* data);
  void ReadLength(CTokens* in);

  std::map<std::string, LABEL_SET> formats_;
  std::map<std::string, int> textLengths_;
  std::map<std::string, std::string> files_;                 // by the names FILENAME gives them
  std::vector<std::pair<std::string, std::string>> uses_;    // variable, format
  std::vector<std::pair<std::string, std::string>> labels_;  // variable, label
  // Of INPUT.
  int place_ = 1;          // the column of the line that comes next, from 1
  bool modified_ = false;  // a colon stands before the informat: the field is one of a list
  bool held_ = true;       // may an INPUT follow on the same line?
};

std::string Upper(std::string text) {
  for (char& c : text) {
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
  }
  return text;
}

// The bytes that "09" or "092C" stands for.
std::string BytesOfHex(std::string_view text) {
  constexpr int kBase = 16;
  std::string bytes;
  for (std::size_t at = 0; at + 1 < text.size(); at += 2) {
    unsigned byte = 0;
    std::from_chars(text.data() + at, text.data() + at + 2, byte, kBase);
    bytes += static_cast<char>(byte);
  }
  return bytes;
}

// Statements end with a semicolon; data begin behind DATALINES or CARDS.
bool CSasProgramReader::ReadProgram(PROGRAM_DATA* data) {
  std::string line;
  std::string statement;
  std::int64_t begin = 1;
  char quote = 0;
  data->wraps = true;
  while (Lines().Next(&line)) {
    const std::string_view text = Trimmed(line);
    for (const char* const word : {"DATALINES", "CARDS", "LINES", "DATALINES4", "CARDS4"}) {
      const std::string card = std::string(word) + ";";
      if (!statement.empty() || !EqualIgnoringCase(text, card)) continue;
      data->firstLine = Lines().Number() + 1;
      data->end = card[card.size() - 2] == '4' ? ";;;;" : ";";
      if (!SkipData(data->end, &line)) line.clear();
      break;
    }
    for (const char c : line) {
      if (statement.empty() && (c == ' ' || c == '\t' || c == '\r')) continue;
      if (statement.empty()) begin = Lines().Number();
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
    if (!statement.empty()) statement += '\n';
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

// Lines of data, up to the one that ends them: the first with a semicolon, which may belong to the
// next statement, or four of them. False when nothing of that line is left to be read.
bool CSasProgramReader::SkipData(const std::string& end, std::string* line) {
  const bool any = end.size() == 1;
  while (Lines().Next(line)) {
    if (any ? line->find(';') != std::string::npos : Trimmed(*line) == end) return any;
  }
  return false;
}

bool CSasProgramReader::ReadStatement(const std::string& statement, std::int64_t line,
                                      PROGRAM_DATA* data) {
  constexpr std::string_view kHarmless[] = {"OPTIONS", "PROC", "RUN",   "DATA",    "TITLE",
                                            "*",       "QUIT", "PRINT", "LIBNAME", "VAR"};
  CTokens in(SplitCommand(statement, line, ".$"));
  const PROGRAM_TOKEN first = in.Take();
  if (first.kind == PROGRAM_TOKEN::End) return true;
  if (first.Is("INFILE")) {
    return ReadInfile(&in, data);
  } else if (first.Is("FILENAME")) {
    const std::string name = Upper(in.Take().text);
    if (in.Peek().kind == PROGRAM_TOKEN::Text) files_[name] = in.Take().text;
  } else if (first.Is("INPUT")) {
    if (!held_) return FailLine(line, "a second INPUT statement is not understood here");
    held_ = false;
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

bool CSasProgramReader::ReadInfile(CTokens* in, PROGRAM_DATA* data) {
  const PROGRAM_TOKEN file = in->Take();
  bool inside = false;
  for (const char* const word : {"DATALINES", "CARDS", "LINES", "DATALINES4", "CARDS4"}) {
    inside = inside || file.Is(word);
  }
  const auto named = files_.find(Upper(file.text));
  if (file.kind == PROGRAM_TOKEN::Text) {
    data->file = file.text;
  } else if (named != files_.end()) {
    data->file = named->second;
  } else if (!inside) {
    return FailLine(file.line,
                    "INFILE " + file.text + ": the name of a file is expected in quotes");
  }
  data->wraps = true;
  while (!in->AtEnd()) {
    if (!ReadInfileOption(in, data)) return false;
  }
  return true;
}

// Fails for what would change the reading and is not known.
bool CSasProgramReader::ReadInfileOption(CTokens* in, PROGRAM_DATA* data) {
  const PROGRAM_TOKEN option = in->Take();
  const bool valued = in->TakeIf("=");
  const PROGRAM_TOKEN value = valued ? in->Take() : PROGRAM_TOKEN();
  if (option.Is("DSD")) {
    if (data->separators.empty()) data->separators = ",";
    data->wraps = false;
  } else if (option.Is("TRUNCOVER") || option.Is("MISSOVER") || option.Is("STOPOVER")) {
    data->wraps = false;
  } else if ((option.Is("DLM") || option.Is("DELIMITER")) && value.kind == PROGRAM_TOKEN::Text) {
    data->separators = in->TakeIf("X") ? BytesOfHex(value.text) : value.text;
  } else if (option.Is("FIRSTOBS")) {
    int line = 0;
    if (!ParseInt(value.text, &line)) return FailNotUnderstood(value);
    data->firstLine = line;
  } else {
    for (const char* const word : {"LRECL", "ENCODING", "PAD", "TERMSTR", "IGNOREDOSEOF", "RECFM",
                                   "FLOWOVER", "EXPANDTABS"}) {
      if (option.Is(word)) return true;
    }
    return FailNotUnderstood(option);
  }
  return true;
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

// "NAME $ 5-12", "@5 NAME $CHAR8.", "NAME 8.2", "NAME : 8.", "NAME", with "$" for a text.
bool CSasProgramReader::ReadInput(CTokens* in, PROGRAM_DATA* data) {
  while (!in->AtEnd()) {
    const PROGRAM_TOKEN token = in->Take();
    int first = 0;
    if (token.Is("@")) {
      if (!ReadAt(in, data)) return false;
    } else if (token.Is(":")) {
      modified_ = true;
    } else if (token.text.substr(0, 1) == "$" || token.text.find('.') != std::string::npos) {
      if (!ReadInformat(token, data)) return false;
    } else if (ParseInt(token.text, &first) && first >= 1 && !data->columns.empty()) {
      if (!ReadColumns(first, in, data)) return false;
    } else if (token.kind == PROGRAM_TOKEN::Word && first == 0) {
      ReadInputName(token.text, data);
    } else if (token.Is("#") || token.Is("/")) {
      return FailLine(token.line, "records of several lines are not read");
    } else {
      return FailNotUnderstood(token);
    }
  }
  for (const PROGRAM_COLUMN& column : data->columns) {
    if ((column.begin < 0) == (data->columns.front().begin < 0)) continue;
    return FailLine(in->Peek().line, "columns and lists are mixed");
  }
  return true;
}

// "@5" moves to a column; at the end "@" holds the line for the next INPUT, "@@" for the next
// record.
bool CSasProgramReader::ReadAt(CTokens* in, PROGRAM_DATA* data) {
  if (ParseInt(in->Peek().text, &place_) && place_ >= 1) return in->Take(), true;
  data->flows = in->TakeIf("@");
  held_ = !data->flows;
  return in->AtEnd() || FailNotUnderstood(in->Peek());
}

// One with a width reads so many columns, unless a colon before it makes it one of a list.
bool CSasProgramReader::ReadInformat(const PROGRAM_TOKEN& token, PROGRAM_DATA* data) {
  if (data->columns.empty()) return FailLine(token.line, "a name is expected");
  PROGRAM_COLUMN& column = data->columns.back();
  UseFormat(token.text, &column.variable);
  if (modified_ || token.text.find('.') == std::string::npos) return true;
  if (SplitFormat(token.text).width < 1) {
    return FailLine(token.line, token.text + ": an informat with a width is expected");
  }
  column.begin = place_ - 1;
  column.width = column.variable.width;
  column.impliedDecimals = column.variable.decimals;
  place_ += column.width;
  return true;
}

bool CSasProgramReader::ReadColumns(int first, CTokens* in, PROGRAM_DATA* data) {
  PROGRAM_COLUMN& column = data->columns.back();
  const bool range = in->TakeIf("-");
  int last = first;
  if (range) {
    const PROGRAM_TOKEN end = in->Take();
    if (!ParseInt(end.text, &last)) return FailNotUnderstood(end);
    if (last < first) return FailLine(end.line, "columns that end before they begin");
  }
  column.begin = first - 1;
  column.width = column.variable.width = last - first + 1;
  column.variable.decimals = 0;
  place_ = last + 1;
  return true;
}

void CSasProgramReader::ReadInputName(const std::string& name, PROGRAM_DATA* data) {
  PROGRAM_COLUMN column = ColumnNamed(name);
  const auto length = textLengths_.find(Upper(name));
  if (length != textLengths_.end()) {
    column.variable.type = ST_TYPE_STRING;
    column.variable.width = length->second;
    column.variable.decimals = 0;
  }
  modified_ = false;
  data->columns.push_back(std::move(column));
}

}  // namespace

std::unique_ptr<CReader> ReadSasProgram() {
  return std::make_unique<CSasProgramReader>();
}

}  // namespace statrn32
