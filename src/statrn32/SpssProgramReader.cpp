// The commands of SPSS that describe data.
#include <limits>

#include "host/Text.h"
#include "host/statrn32.h"
#include "statrn32/ProgramFiles.h"
#include "statrn32/ProgramTokens.h"

namespace statrn32 {
namespace {

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
  static std::vector<PROGRAM_COLUMN*> TakeColumns(CTokens* in, PROGRAM_DATA* data);
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
  data->commas = true;
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
      return FailNotUnderstood(token);
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

// The variables that stand next: "A", "A TO C" or "ALL".
std::vector<PROGRAM_COLUMN*> CSpssProgramReader::TakeColumns(CTokens* in, PROGRAM_DATA* data) {
  std::vector<PROGRAM_COLUMN*> columns;
  while (in->Peek().kind == PROGRAM_TOKEN::Word) {
    const bool all = in->Peek().Is("ALL") && !data->columns.empty();
    PROGRAM_COLUMN* first = all ? data->columns.data() : FindColumn(data, in->Peek().text);
    if (first == nullptr) break;
    in->Take();
    PROGRAM_COLUMN* last = all ? &data->columns.back() : first;
    if (in->TakeIf("TO")) last = FindColumn(data, in->Take().text);
    for (; last != nullptr && first <= last; ++first) columns.push_back(first);
  }
  return columns;
}

void CSpssProgramReader::ReadLabels(CTokens* in, PROGRAM_DATA* data) {
  while (!in->AtEnd()) {
    const auto set = static_cast<int>(data->labelSets.size());
    const std::vector<PROGRAM_COLUMN*> columns = TakeColumns(in, data);
    for (PROGRAM_COLUMN* const column : columns) column->variable.labelSet = set;
    data->labelSets.emplace_back();
    ReadValueLabels(in, &data->labelSets.back());
    if (!in->TakeIf("/") && columns.empty()) in->Take();
  }
}

// Names, then up to three values or a range in parentheses.
void CSpssProgramReader::ReadMissing(CTokens* in, PROGRAM_DATA* data) {
  std::vector<PROGRAM_COLUMN*> columns;
  while (!in->AtEnd()) {
    if (!in->TakeIf("(")) {
      const std::vector<PROGRAM_COLUMN*> named = TakeColumns(in, data);
      columns.insert(columns.end(), named.begin(), named.end());
      if (named.empty()) in->Take();
      continue;
    }
    std::vector<MISSING_RANGE> ranges;
    bool through = false;
    while (!in->AtEnd() && !in->TakeIf(")")) {
      double value = 0;
      const bool negative = in->TakeIf("-");
      const PROGRAM_TOKEN token = in->Take();
      if (token.Is("THRU") || token.Is("THROUGH")) through = true;
      if (token.Is("LO") || token.Is("LOWEST")) {
        value = -std::numeric_limits<double>::infinity();
      } else if (token.Is("HI") || token.Is("HIGHEST")) {
        value = std::numeric_limits<double>::infinity();
      } else if (!ParseProgramNumber(token.text, &value)) {
        continue;
      }
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

}  // namespace

std::unique_ptr<CReader> ReadSpssProgram() {
  return std::make_unique<CSpssProgramReader>();
}

}  // namespace statrn32
