// The commands of Stata that describe data.
#include <algorithm>
#include <map>

#include "host/Text.h"
#include "host/statrn32.h"
#include "statrn32/ProgramFiles.h"
#include "statrn32/ProgramTokens.h"

namespace statrn32 {
namespace {

class CStataProgramReader final : public CProgramReader {
 public:
  CStataProgramReader() : CProgramReader(41) {}

 protected:
  bool ReadProgram(PROGRAM_DATA* data) override;

 private:
  bool ReadCommand(const std::string& line, PROGRAM_DATA* data);
  bool ReadVariables(CTokens* in, PROGRAM_DATA* data);
  bool ReadVariable(CTokens* in, int* textBytes, PROGRAM_DATA* data);
  bool ReadUsing(CTokens* in, PROGRAM_DATA* data);
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
    data->commas = true;
    if (!ReadVariables(&in, data)) return false;
    data->firstLine = Lines().Number() + 1;
    data->end = "END";
    while (Lines().Next(&data_line) && !EqualIgnoringCase(Trimmed(data_line), data->end)) continue;
    return true;
  }
  if (first.Is("INFILE") || first.Is("INFIX")) {
    data->flows = data->commas = first.Is("INFILE");
    return ReadVariables(&in, data) && ReadUsing(&in, data);
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

// The file, whose name may stand without quotes, and no option that changes what is read.
bool CStataProgramReader::ReadUsing(CTokens* in, PROGRAM_DATA* data) {
  const std::int64_t line = in->Peek().line;
  if (!in->TakeIf("USING")) return FailLine(line, "using is expected");
  while (!in->AtEnd() && !in->Peek().Is(",")) data->file += in->Take().text;
  in->TakeIf(",");
  while (!in->AtEnd()) {
    const PROGRAM_TOKEN option = in->Take();
    if (!option.Is("CLEAR")) return FailNotUnderstood(option);
  }
  const bool plain = data->file.find('.') == std::string::npos;
  if (plain && !data->file.empty()) data->file += ".raw";
  return !data->file.empty() || FailLine(line, "the name of a file is expected");
}

// "double AGE str12 TOWN", for infix with columns behind each name.
bool CStataProgramReader::ReadVariables(CTokens* in, PROGRAM_DATA* data) {
  int textBytes = 0;
  while (!in->AtEnd() && !in->Peek().Is("USING")) {
    if (!ReadVariable(in, &textBytes, data)) return false;
  }
  return true;
}

// One word of the list; `textBytes` is what the type before a name said.
bool CStataProgramReader::ReadVariable(CTokens* in, int* textBytes, PROGRAM_DATA* data) {
  const PROGRAM_TOKEN token = in->Take();
  int number = 0;
  const bool text = token.text.size() > 3 && token.text.substr(0, 3) == "str" &&
                    ParseInt(token.text.substr(3), &number);
  const bool name =
      token.kind == PROGRAM_TOKEN::Word && (token.text[0] < '0' || token.text[0] > '9');
  if (text || token.Is("STR") || token.Is("STRL")) {
    *textBytes = std::max(1, number);
  } else if (token.Is("DOUBLE") || token.Is("FLOAT") || token.Is("LONG") || token.Is("INT") ||
             token.Is("BYTE")) {
    *textBytes = 0;
  } else if (ParseInt(token.text, &number) && number >= 1 && !data->columns.empty()) {
    PROGRAM_COLUMN& column = data->columns.back();
    int last = number;
    const bool range = in->TakeIf("-");
    const PROGRAM_TOKEN end = range ? in->Take() : token;
    if (!ParseInt(end.text, &last)) return FailNotUnderstood(end);
    if (last < number) return FailLine(token.line, "columns that end before they begin");
    column.begin = number - 1;
    column.width = last - number + 1;
  } else if (name && !token.Is("DICTIONARY") && !token.Is("_SKIP")) {
    PROGRAM_COLUMN column = ColumnNamed(token.text);
    if (*textBytes > 0) {
      column.variable.type = ST_TYPE_STRING;
      column.variable.width = *textBytes;
      column.variable.decimals = 0;
    }
    *textBytes = 0;
    data->columns.push_back(std::move(column));
    if (in->TakeIf(":")) uses_.emplace_back(token.text, in->Take().text);
  } else {
    return FailNotUnderstood(token);
  }
  return true;
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

std::unique_ptr<CReader> ReadStataProgram() {
  return std::make_unique<CStataProgramReader>();
}

}  // namespace statrn32
