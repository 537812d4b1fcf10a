// The writing half of host/statrn32.h.
#include <new>
#include <utility>

#include "statrn32/Environment.h"

using statrn32::DICTIONARY;
using statrn32::FailWith;
using statrn32::FORMAT;
using statrn32::OUT_CELL;
using statrn32::VARIABLE;

namespace {

OUT_CELL* FindCell(ST_FILE* file, int var) {
  if (file == nullptr || var < 0 || static_cast<std::size_t>(var) >= file->outCells.size()) {
    return nullptr;
  }
  return &file->outCells[static_cast<std::size_t>(var)];
}

VARIABLE* LastVariable(ST_ENV* env) {
  if (env == nullptr || env->userDictionary.variables.empty()) return nullptr;
  return &env->userDictionary.variables.back();
}

// What must be known before a file is begun; empty when all is.
std::string WhyNotReady(const ST_ENV& env, std::int32_t type) {
  if (!ST_CanWrite(type)) return statrn32::CannotWriteText(type);
  if (env.userDictionary.variables.empty()) return "No variables were described";
  if (static_cast<int>(env.userDictionary.variables.size()) != env.userVariables) {
    return "Fewer variables were described than announced";
  }
  if (env.cases < 0) return "The number of records was not told";
  return {};
}

std::vector<std::pair<std::string, std::string>> MakeNamesLegal(const FORMAT& format,
                                                                DICTIONARY* dictionary) {
  std::vector<std::string> names;
  for (const VARIABLE& variable : dictionary->variables) names.push_back(variable.name);
  auto changed = MakeLegalNames(*format.names, &names);
  for (std::size_t i = 0; i < names.size(); ++i) dictionary->variables[i].name = names[i];
  return changed;
}

ST_FILE* OpenOutFile(ST_ENV* env, const FORMAT& format, const char* name) {
  auto file = std::make_unique<ST_FILE>();
  file->env = env;
  file->dictionary = env->userDictionary;
  file->renamed = MakeNamesLegal(format, &file->dictionary);
  file->outCells.resize(file->dictionary.variables.size());
  file->writer = format.writer();
  file->writer->SetFinalName(std::exchange(env->outName, {}));
  if (!file->writer->Begin(name, file->dictionary, env->cases)) {
    FailWith(env, file->writer->Error());
    return nullptr;
  }
  env->output = std::move(file);
  return env->output.get();
}

}  // namespace

int ST_InitUserDict(ST_ENV* env, int variables) {
  if (env == nullptr) return -1;
  env->error.clear();
  std::string password = std::move(env->userDictionary.password);  // is none of the variables'
  env->userDictionary = {};
  env->userDictionary.password = std::move(password);
  env->userVariables = variables;
  env->cases = -1;
  return variables > 0 ? 0 : FailWith(env, "A file needs at least one variable");
}

int ST_AddUserVar(ST_ENV* env, const char* name, std::int32_t type, int width, int decimals) {
  if (env == nullptr || name == nullptr) return -1;
  if (type != ST_TYPE_NUMERIC && type != ST_TYPE_STRING && type != ST_TYPE_DATE) {
    return FailWith(env, std::string("The variable ") + name + " has no known type");
  }
  auto& variables = env->userDictionary.variables;
  if (static_cast<int>(variables.size()) >= env->userVariables) {
    return FailWith(env, "More variables were described than announced");
  }
  VARIABLE variable;
  variable.name = name;
  variable.type = type;
  variable.width = width;
  variable.decimals = decimals;
  variables.push_back(std::move(variable));
  return 0;
}

int ST_SetUserVarLabel(ST_ENV* env, const char* label) {
  VARIABLE* const variable = LastVariable(env);
  if (variable == nullptr || label == nullptr) return -1;
  variable->label = label;
  return 0;
}

int ST_AddUserValueLabel(ST_ENV* env, double value, const char* label) {
  VARIABLE* const variable = LastVariable(env);
  if (variable == nullptr || label == nullptr) return -1;
  auto& sets = env->userDictionary.labelSets;
  if (variable->labelSet < 0) {
    variable->labelSet = static_cast<int>(sets.size());
    sets.emplace_back();
  }
  statrn32::VALUE_LABEL entry;
  entry.number = value;
  entry.label = label;
  sets.back().push_back(std::move(entry));
  return 0;
}

int ST_SetNCases(ST_ENV* env, std::int64_t cases) {
  if (env == nullptr) return -1;
  if (cases < 0) return FailWith(env, "The number of records cannot be negative");
  env->cases = cases;
  return 0;
}

// An option of a format that is not written here: accepted, so that a caller sets it without
// asking.
int ST_SetSasStyle(ST_ENV* env, int /*style*/) {
  return env != nullptr ? 0 : -1;
}
int ST_DBSetParm(ST_ENV* env, int parameter, int /*option*/, const char* value) {
  constexpr int kTableName = 2;
  if (env == nullptr || value == nullptr) return -1;
  if (parameter == kTableName) env->userDictionary.tableName = value;
  return 0;
}

int ST_SetOutName(ST_ENV* env, const char* name) {
  if (env == nullptr || name == nullptr) return -1;
  env->outName = name;
  return 0;
}

int ST_GetNLosses(ST_ENV* env, std::int32_t type) {
  const FORMAT* const format = statrn32::FindFormat(type);
  if (env == nullptr || format == nullptr) return -1;
  env->losses = statrn32::LossesOf(*format, env->userDictionary, env->cases);
  return static_cast<int>(env->losses.size());
}

const char* ST_GetLoss(ST_ENV* env, int index) {
  return env != nullptr ? statrn32::TextAt(env->losses, index) : "";
}

ST_FILE* ST_OpenOutFile(ST_ENV* env, std::int32_t type, const char* name) {
  if (env == nullptr) return nullptr;
  env->error.clear();
  env->output.reset();
  env->notes.clear();
  if (name == nullptr || *name == '\0') {
    FailWith(env, "No file name was given");
    return nullptr;
  }
  const std::string problem = WhyNotReady(*env, type);
  if (!problem.empty()) {
    FailWith(env, std::string(name) + ": " + problem);
    return nullptr;
  }
  try {
    return OpenOutFile(env, *statrn32::FindFormat(type), name);
  } catch (const std::bad_alloc&) {
    FailWith(env, std::string(name) + ": not enough memory");
    return nullptr;
  }
}

int ST_GetNRenamed(ST_FILE* file) {
  return file != nullptr ? static_cast<int>(file->renamed.size()) : -1;
}

int ST_GetRenamed(ST_FILE* file, int index, const char** oldName, const char** newName) {
  if (file == nullptr || index < 0 || static_cast<std::size_t>(index) >= file->renamed.size()) {
    return -1;
  }
  const auto& names = file->renamed[static_cast<std::size_t>(index)];
  *oldName = names.first.c_str();
  *newName = names.second.c_str();
  return 0;
}

int ST_SetVarDouble(ST_FILE* file, int var, double value) {
  OUT_CELL* const cell = FindCell(file, var);
  if (cell == nullptr) return -1;
  cell->number = value;
  cell->missing = false;
  return 0;
}

int ST_SetVarString(ST_FILE* file, int var, const char* text) {
  OUT_CELL* const cell = FindCell(file, var);
  if (cell == nullptr || text == nullptr) return -1;
  cell->text = text;
  cell->missing = false;
  return 0;
}

int ST_SetVarMissing(ST_FILE* file, int var) {
  OUT_CELL* const cell = FindCell(file, var);
  if (cell == nullptr) return -1;
  cell->missing = true;
  return 0;
}

int ST_WriteRecord(ST_FILE* file) {
  if (file == nullptr || !file->writer) return -1;
  const bool written = file->writer->WriteRecord(file->outCells);
  for (OUT_CELL& cell : file->outCells) cell.missing = true;
  return written ? 0 : FailWith(file->env, file->writer->Error());
}
