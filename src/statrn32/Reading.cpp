// The reading half of host/statrn32.h.
#include <algorithm>
#include <cstring>
#include <exception>
#include <new>
#include <utility>

#include "host/Numbers.h"
#include "statrn32/Environment.h"
#include "statrn32/SqlFiles.h"
#include "statrn32/TextDecoder.h"

using statrn32::FailWith;
using statrn32::VARIABLE;

namespace {

const VARIABLE* FindVariable(const ST_FILE* file, int var) {
  if (file == nullptr || var < 0) return nullptr;
  const auto index = static_cast<std::size_t>(var);
  return index < file->dictionary.variables.size() ? &file->dictionary.variables[index] : nullptr;
}

const statrn32::LABEL_SET* FindLabels(const ST_FILE* file, int var) {
  const VARIABLE* const variable = FindVariable(file, var);
  if (variable == nullptr || variable->labelSet < 0) return nullptr;
  return &file->dictionary.labelSets[static_cast<std::size_t>(variable->labelSet)];
}

// What a reader or its library throws is a failure like any other: the ST_ functions throw nothing.
template <typename WORK>
int Guarded(ST_ENV* env, const std::string& place, const WORK& work) {
  try {
    return work();
  } catch (const std::bad_alloc&) {
    return FailWith(env, place + ": not enough memory");
  } catch (const std::exception& problem) {
    return FailWith(env, place + ": the file cannot be read: " + problem.what());
  }
}

int ReadDict(ST_FILE* file) {
  file->dictionary = {};
  file->columns.clear();
  if (!file->reader->ReadDictionary(&file->dictionary)) {
    return FailWith(file->env, file->reader->Error());
  }
  for (const VARIABLE& variable : file->dictionary.variables) {
    const bool date = variable.type == ST_TYPE_DATE;
    file->columns.push_back({variable.type, date ? DisplayOf(variable.date) : variable.type});
  }
  file->dictionaryRead = true;
  return static_cast<int>(file->columns.size());
}

// The first record of the next block.
int NextBlock(ST_FILE* file) {
  file->cells = nullptr;
  if (file->ended) return 0;
  file->block = file->reader->NextBlock();
  file->record = 0;
  if (file->block != nullptr) {
    file->cells = file->block->cells.data();
    file->status = file->block->status.data();
    return 1;
  }
  file->ended = true;
  file->env->notes = file->reader->Notes();
  return file->reader->Error().empty() ? 0 : FailWith(file->env, file->reader->Error());
}

}  // namespace

int ST_SetWksNameRow(ST_ENV* env, int row) {
  if (env == nullptr) return -1;
  env->options.nameRow = row;
  return 0;
}

// Types are always told from all rows.
int ST_SetWksReadMode(ST_ENV* env, int /*mode*/) {
  return env != nullptr ? 0 : -1;
}

int ST_GetWksNameStat(ST_FILE* file) {
  return file != nullptr && file->reader && file->reader->NamesFound() ? 0 : -1;
}

int ST_SetInputEncoding(ST_ENV* env, const char* encoding) {
  if (env == nullptr || encoding == nullptr) return -1;
  if (!statrn32::KnowsEncoding(encoding)) {
    return FailWith(env, std::string(encoding) + ": this encoding is not known");
  }
  env->options.encoding = encoding;
  return 0;
}

int ST_SetInputTable(ST_ENV* env, const char* table) {
  if (env == nullptr || table == nullptr) return -1;
  env->options.table = table;
  return 0;
}

int ST_SetDatabasePassword(ST_ENV* env, const char* password) {
  if (env == nullptr || password == nullptr) return -1;
  env->options.password = password;
  env->userDictionary.password = password;
  return 0;
}

const char* ST_GetGuessedEncoding(ST_FILE* file) {
  if (file == nullptr || !file->reader) return "";
  file->guessedEncoding = file->reader->GuessedEncoding();
  return file->guessedEncoding.c_str();
}

bool ST_LeadsToDatabase(const char* name) {
  return statrn32::IsConnectionFile(statrn32::FirstBytesOf(name));
}

int ST_GetNTables(ST_FILE* file) {
  return file != nullptr ? static_cast<int>(file->tables.size()) : -1;
}

const char* ST_GetTableName(ST_FILE* file, int index) {
  return file != nullptr ? statrn32::TextAt(file->tables, index) : "";
}

ST_FILE* ST_OpenInputFile(ST_ENV* env, std::int32_t type, const char* name) {
  if (env == nullptr) return nullptr;
  env->error.clear();
  env->input.reset();
  env->notes.clear();
  const statrn32::READ_OPTIONS options = std::exchange(env->options, {});
  if (name == nullptr || *name == '\0') {
    FailWith(env, "No file name was given");
    return nullptr;
  }
  if (!ST_CanRead(type)) {
    FailWith(env, std::string(name) + ": " + statrn32::CannotReadText(type));
    return nullptr;
  }
  Guarded(env, name, [&] {
    auto file = std::make_unique<ST_FILE>();
    file->env = env;
    file->reader = statrn32::FindFormat(type)->reader();
    file->reader->SetOptions(options);
    if (!file->reader->Open(name)) return FailWith(env, file->reader->Error());
    file->tables = file->reader->Tables();
    env->input = std::move(file);
    return 0;
  });
  return env->input.get();
}

int ST_ReadDict(ST_FILE* file) {
  if (file == nullptr || !file->reader) return -1;
  if (file->dictionaryRead) return static_cast<int>(file->columns.size());
  return Guarded(file->env, "The dictionary", [&] { return ReadDict(file); });
}

std::int64_t ST_GetNCases(ST_FILE* file) {
  return file != nullptr && file->dictionaryRead
             ? std::max<std::int64_t>(-1, file->dictionary.cases)
             : -1;
}

int ST_SelectAllVars(ST_FILE* file) {
  return file != nullptr && file->dictionaryRead ? 0 : -1;
}

int ST_InitReadOnly(ST_FILE* file) {
  return file != nullptr && file->dictionaryRead ? 0 : -1;
}

const char* ST_GetVarName(ST_FILE* file, int var) {
  const VARIABLE* const variable = FindVariable(file, var);
  return variable != nullptr ? variable->name.c_str() : "";
}

const char* ST_GetVarLabel(ST_FILE* file, int var) {
  const VARIABLE* const variable = FindVariable(file, var);
  return variable != nullptr ? variable->label.c_str() : "";
}

std::int32_t ST_GetVarTypeExt(ST_FILE* file, int var) {
  const VARIABLE* const variable = FindVariable(file, var);
  return variable != nullptr ? variable->type : ST_TYPE_UNKNOWN;
}

int ST_GetVarPrintWidth(ST_FILE* file, int var) {
  const VARIABLE* const variable = FindVariable(file, var);
  return variable != nullptr ? variable->width : -1;
}

int ST_GetVarNDec(ST_FILE* file, int var) {
  const VARIABLE* const variable = FindVariable(file, var);
  return variable != nullptr ? variable->decimals : -1;
}

int ST_GetNValueLabels(ST_FILE* file, int var) {
  const statrn32::LABEL_SET* const labels = FindLabels(file, var);
  return labels != nullptr ? static_cast<int>(labels->size()) : 0;
}

int ST_GetValueLabel(ST_FILE* file, int var, int label, ST_LABEL* out) {
  const statrn32::LABEL_SET* const labels = FindLabels(file, var);
  if (labels == nullptr || out == nullptr || label < 0 ||
      static_cast<std::size_t>(label) >= labels->size()) {
    return -1;
  }
  const statrn32::VALUE_LABEL& entry = (*labels)[static_cast<std::size_t>(label)];
  *out = {entry.number, entry.isText ? entry.text.c_str() : nullptr, entry.label.c_str(),
          entry.tag};
  return 0;
}

int ST_ReadRecord(ST_FILE* file) {
  if (file == nullptr || !file->reader || !file->dictionaryRead) return -1;
  if (file->cells != nullptr && ++file->record < file->block->records) {
    file->cells += file->columns.size();
    file->status += file->columns.size();
    return 1;
  }
  const int got = Guarded(file->env, "The records", [&] { return NextBlock(file); });
  file->ended = file->ended || got < 0;
  return got;
}

int ST_GetVarDataExt(ST_FILE* file, int var, std::int32_t* type, const void** value,
                     std::int32_t* display) {
  const auto index = static_cast<std::size_t>(var);
  if (file == nullptr || file->cells == nullptr || index >= file->columns.size()) {
    return ST_STATUS_ERROR;
  }
  const ST_FILE::COLUMN& column = file->columns[index];
  const statrn32::CELL& cell = file->cells[index];
  *type = column.type;
  *display = column.display;
  *value = column.type == ST_TYPE_STRING
               ? static_cast<const void*>(file->block->texts.data() + cell.text)
               : &cell.number;
  return file->status[index];
}

int ST_FromIDate(ST_FILE* file, double value, std::int32_t display, std::int32_t* part1,
                 std::int32_t* part2) {
  *part1 = *part2 = 0;
  if (file == nullptr || !file->reader) return -1;
  const statrn32::DATE_KIND kind = file->reader->DateKindOf(display);
  return statrn32::CalendarParts(kind, file->reader->EpochDay(), value, part1, part2) ? 0 : -1;
}

int ST_FormatDate(ST_FILE* file, int var, double value, char* buffer, int size) {
  const VARIABLE* const variable = FindVariable(file, var);
  if (variable == nullptr || !file->reader || buffer == nullptr || size < 1) return -1;
  const std::string text =
      statrn32::FormatDateValue(variable->date, file->reader->EpochDay(), value);
  const std::size_t length = std::min(text.size(), static_cast<std::size_t>(size) - 1);
  std::memcpy(buffer, text.data(), length);
  buffer[length] = '\0';
  return static_cast<int>(length);
}

double ST_GetProgress(ST_FILE* file) {
  return file != nullptr && file->reader ? file->reader->Progress() : -1;
}
