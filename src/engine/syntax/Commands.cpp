#include "engine/syntax/Commands.h"

#include <algorithm>
#include <utility>

#include "engine/syntax/Syntax.h"
#include "host/Text.h"

namespace {

constexpr std::size_t kNewNameBytes = 16;

void ReadSE(COMMANDCONTEXT& context) {
  JOB& job = context.job;
  for (const std::int32_t variable : context.words.TakeVariables("variables of the analysis")) {
    if (std::find(job.selected.begin(), job.selected.end(), variable) != job.selected.end()) {
      context.words.Fail("variable " + std::to_string(variable + 1) +
                         " is already selected by an earlier SE line");
      return;
    }
    job.selected.push_back(variable);
  }
  if (job.selectedLine.number == 0) job.selectedLine = context.line;
}

// Conditions are on the data file's own variables and on the data as they stand there.
void ReadSelection(COMMANDCONTEXT& context) {
  CString problem;
  JOB& job = context.job;
  TORVIKSTRUCT& data = job.data;
  const std::int32_t all = std::exchange(data.variables, job.fileVariables);
  const bool understood =
      job.selection.AddLine(data, context.names, Trimmed(context.line.text), problem);
  data.variables = all;
  if (!understood) context.words.Fail(problem);
  job.selectionLines.push_back(context.line);
}

template <std::int32_t type>
void ReadType(COMMANDCONTEXT& context) {
  for (const std::int32_t variable : context.words.TakeVariables("variables")) {
    context.job.data.variable[static_cast<std::size_t>(variable)].type = type;
    context.job.typeSet[static_cast<std::size_t>(variable)] = true;
  }
}

bool MayNameVariable(std::string_view name) {
  const bool digits =
      std::all_of(name.begin(), name.end(), [](char c) { return c >= '0' && c <= '9'; });
  return !digits && name.size() <= kNewNameBytes &&
         name.find_first_of(" \t+-*/()=") == std::string_view::npos;
}

// The variable that an NE line changes, or the new one that it makes.
std::int32_t TargetOf(COMMANDCONTEXT& context, std::string_view name) {
  if (const auto variable = context.names.Find(name)) return *variable;
  if (!MayNameVariable(name)) {
    context.words.Fail("expected the name of a variable before =, found " + Shown(name),
                       "A new name has up to 16 characters, none of them a blank or an operator, "
                       "and is no number.");
    return 0;
  }
  JOB& job = context.job;
  job.data.ResizeArrays(static_cast<std::size_t>(job.data.variables) + 1);
  VARSTRUCT& variable = job.data.variable[static_cast<std::size_t>(job.data.variables++)];
  variable = VARSTRUCT();
  variable.name = name;
  variable.type = kContinuous;
  job.typeSet.push_back(true);
  return context.names.Add(name);
}

void ReadNE(COMMANDCONTEXT& context) {
  const std::string_view text = Trimmed(Trimmed(context.line.text).substr(2));
  const std::size_t equals = text.find('=');
  if (equals == std::string_view::npos) {
    context.words.Fail("expected NE name = expression, found no =");
    return;
  }
  CString problem;
  COMPUTE compute;
  compute.line = context.line;
  if (!compute.expression.Parse(text.substr(equals + 1), context.names, problem)) {
    context.words.Fail(problem);
    return;
  }
  compute.target = TargetOf(context, Trimmed(text.substr(0, equals)));
  context.job.transformations.emplace_back(std::move(compute));
}

void ReadRC(COMMANDCONTEXT& context) {
  RECODE recode;
  recode.line = context.line;
  if (ParseRecode(context.words, recode)) {
    context.job.transformations.emplace_back(std::move(recode));
  }
}

constexpr COMMAND kCommands[] = {
    {"SE", ReadSE, {}, {}, "SE list"},
    {"SC",
     ReadSelection,
     {},
     "CASE ODD EVEN",
     "SC list < value (or >, =), or SC CASE ODD, EVEN, < n, > n"},
    {"SD", ReadSelection, {}, {}, "SD list < value (or >, =)"},
    {"OR", ReadType<kOrdinal>, {}, {}, "OR list"},
    {"CO", ReadType<kContinuous>, {}, {}, "CO list"},
    {"CA", ReadType<kCensoredAbove>, {}, {}, "CA list"},
    {"CB", ReadType<kCensoredBelow>, {}, {}, "CB list"},
    {"CE", ReadType<kCensoredBoth>, {}, {}, "CE list"},
    {"FI", ReadType<kFixed>, {}, {}, "FI list"},
    {"NE", ReadNE, {}, {}, "NE name = expression"},
    {"RC", ReadRC, {}, "OLD= NEW=", "RC list OLD=a,b-c NEW=d"},
};

const COMMAND* FindIn(std::span<const COMMAND> table, std::string_view word) {
  const auto found = std::find_if(table.begin(), table.end(), [word](const COMMAND& command) {
    return EqualIgnoringCase(word, command.word);
  });
  return found == table.end() ? nullptr : &*found;
}

CString WordsOf(std::span<const COMMAND> table) {
  CString words;
  for (const COMMAND& command : table) (words += words.empty() ? "" : " ") += command.word;
  return words;
}

CString KnownCommands() {
  return "The commands are " + WordsOf(DataCommands()) + ", the procedures " +
         WordsOf(ProcedureCommandTable()) + ", and OU as the last line.";
}

bool ReadCommand(const SyntaxLine& line, CVariableNames& names, JOB& job, FAULT& fault) {
  const std::string_view word = FirstWord(line.text);
  const COMMAND* const command = FindCommand(word);
  if (command == nullptr) {
    const bool late = EqualIgnoringCase(word, "SY") || EqualIgnoringCase(word, "RP");
    fault = {line.number, CString(Trimmed(line.text)),
             late ? "SY and RP stand before the first command, and once"
                  : "expected a command, found " + Shown(word),
             late ? CString() : KnownCommands()};
    return false;
  }
  CWords words(line, names, command->singleCharacters);
  COMMANDCONTEXT context{line, words, names, job};
  command->read(context);
  if (words.Ok()) return true;
  fault = words.Fault();
  if (fault.remedy.empty()) {
    fault.remedy = "Write " + CString(command->form) +
                   "; a list holds numbers, names, or ranges of them as in 3-7 or A1-A5.";
  }
  return false;
}

template <typename Procedure>
const PROCEDURE* Find(const JOB& job) {
  for (const PROCEDURE& procedure : job.procedures) {
    if (std::holds_alternative<Procedure>(procedure.what)) return &procedure;
  }
  return nullptr;
}

FAULT FaultOf(const SyntaxLine& line, CString cause, CString remedy) {
  return {line.number, CString(Trimmed(line.text)), std::move(cause), std::move(remedy)};
}

// The file of the thresholds is read by FT and written by the others.
bool CheckThresholdFile(const JOB& job, FAULT& fault) {
  const PROCEDURE* const fixed = Find<FIXTHRESHOLDS>(job);
  if (fixed == nullptr) return true;
  if (job.output.thresholdFile.empty()) {
    fault = FaultOf(fixed->line, "FT needs the file that the thresholds are read from",
                    "Add TH=file to the output line.");
  } else if (Find<EQUALTHRESHOLDS>(job) != nullptr || Find<MARGINALTHRESHOLDS>(job) != nullptr) {
    fault = FaultOf(fixed->line, "FT reads the file of TH= and ET and MT write it",
                    "Use two runs, the first to write the thresholds, the second to read them.");
  }
  return !fault;
}

}  // namespace

std::span<const COMMAND> DataCommands() {
  return kCommands;
}

const COMMAND* FindCommand(std::string_view word) {
  const COMMAND* const found = FindIn(DataCommands(), word);
  return found != nullptr ? found : FindIn(ProcedureCommandTable(), word);
}

bool ParseCommands(const std::vector<SyntaxLine>& lines, const TORVIKSTRUCT& data, JOB& job,
                   FAULT& fault) {
  fault = FAULT();
  job.data = data;
  job.data.ResizeArrays(static_cast<std::size_t>(data.variables));
  job.fileVariables = data.variables;
  job.typeSet.assign(static_cast<std::size_t>(data.variables), false);
  CVariableNames names(data);
  for (const SyntaxLine& line : lines) {
    if (job.output.line.number != 0) {
      fault = FaultOf(line, "OU is the last line of a syntax, and this line stands behind it",
                      "Move the line before OU, or leave it out.");
      return false;
    }
    const bool read = EqualIgnoringCase(FirstWord(line.text), "OU")
                          ? ParseOutputLine(line, job.output, fault)
                          : ReadCommand(line, names, job, fault);
    if (!read) return false;
  }
  if (job.output.line.number == 0) {
    fault.line = lines.empty() ? job.header.line.number : lines.back().number;
    fault.cause = "expected the output line OU, found the end of the syntax";
    fault.remedy = "End the syntax with a line OU.";
    return false;
  }
  return CheckThresholdFile(job, fault);
}
