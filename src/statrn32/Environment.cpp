#include "statrn32/Environment.h"

#include <new>

#include "vexutils/BlockIo.h"

namespace statrn32 {

int FailWith(ST_ENV* env, std::string text, int result) {
  if (env != nullptr) env->error = std::move(text);
  return result;
}

std::string FirstBytesOf(const char* name) {
  CDescriptor file;
  std::string first(kFirstBytes, '\0');
  if (name == nullptr || !file.OpenForReading(name)) return {};
  const std::int64_t got = ReadAt(file.Get(), 0, first.data(), first.size());
  first.resize(got > 0 ? static_cast<std::size_t>(got) : 0);
  return first;
}

const char* TextAt(const std::vector<std::string>& texts, int index) {
  const bool there = index >= 0 && static_cast<std::size_t>(index) < texts.size();
  return there ? texts[static_cast<std::size_t>(index)].c_str() : "";
}

}  // namespace statrn32

ST_ENV* ST_OpenEnvironment() {
  return new (std::nothrow) ST_ENV;
}

int ST_CloseEnvironment(ST_ENV* env) {
  if (env == nullptr) return -1;
  const int result = ST_CloseFiles(env);
  delete env;
  return result;
}

const char* ST_GetErrorMsg(ST_ENV* env) {
  return env != nullptr ? env->error.c_str() : "";
}

bool ST_CanRead(std::int32_t type) {
  const statrn32::FORMAT* const format = statrn32::FindFormat(type);
  return format != nullptr && format->reader != nullptr;
}

bool ST_CanWrite(std::int32_t type) {
  const statrn32::FORMAT* const format = statrn32::FindFormat(type);
  return format != nullptr && format->writer != nullptr;
}

std::int32_t ST_SniffFile(const char* name) {
  if (name == nullptr) return -1;
  const statrn32::FORMAT* const format =
      statrn32::RecogniseFile(name, statrn32::FirstBytesOf(name));
  return format != nullptr ? format->code : -1;
}

bool ST_FileFits(const char* name, std::int32_t type) {
  const statrn32::FORMAT* const format = statrn32::FindFormat(type);
  return name != nullptr && format != nullptr &&
         statrn32::FormatFits(*format, name, statrn32::FirstBytesOf(name));
}

int ST_CloseFiles(ST_ENV* env) {
  if (env == nullptr) return -1;
  if (env->input && !env->input->ended) env->notes = env->input->reader->Notes();
  env->input.reset();
  if (!env->output) return 0;
  statrn32::CWriter& writer = *env->output->writer;
  const int result = writer.Finish() ? 0 : statrn32::FailWith(env, writer.Error());
  env->notes = writer.Notes();
  env->output.reset();
  return result;
}

int ST_GetNNotes(ST_ENV* env) {
  return env != nullptr ? static_cast<int>(env->notes.size()) : -1;
}

const char* ST_GetNote(ST_ENV* env, int index) {
  return env != nullptr ? statrn32::TextAt(env->notes, index) : "";
}

int ST_GetNFormats() {
  return static_cast<int>(statrn32::Formats().size());
}

int ST_GetFormat(int index, ST_FORMAT* out) {
  const auto rows = statrn32::Formats();
  if (out == nullptr || index < 0 || static_cast<std::size_t>(index) >= rows.size()) return -1;
  const statrn32::FORMAT& row = rows[static_cast<std::size_t>(index)];
  *out = {};
  out->code = row.code;
  out->name = row.name;
  out->canRead = row.reader != nullptr;
  out->canWrite = row.writer != nullptr;
  out->dates = row.dates;
  out->variants = row.variants;
  out->notRead = row.notRead;
  out->instead = row.instead;
  if (row.names != nullptr) out->nameBytes = static_cast<std::int64_t>(row.names->bytes);
  if (row.limits == nullptr) return 0;
  out->records = row.limits->records;
  out->variables = row.limits->variables;
  out->textBytes = static_cast<std::int64_t>(row.limits->textBytes);
  out->labelBytes = static_cast<std::int64_t>(row.limits->labelBytes);
  out->valueLabelBytes = static_cast<std::int64_t>(row.limits->valueLabelBytes);
  out->largest = row.limits->largest;
  out->remark = row.limits->remark;
  out->textRemark = row.limits->textRemark;
  return 0;
}
