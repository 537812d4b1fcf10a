// The statements of SAS that describe data.
#include <algorithm>
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
      if (!statement.empty() || !EqualIgnoringCase(text, card)) continue;
      data->firstLine = Lines().Number() + 1;
      data->end = card[card.size() - 2] == '4' ? ";;;;" : ";";
      while (Lines().Next(&line) && Trimmed(line) != data->end) continue;
      line.clear();
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

}  // namespace

std::unique_ptr<CReader> ReadSasProgram() {
  return std::make_unique<CSasProgramReader>();
}

}  // namespace statrn32
