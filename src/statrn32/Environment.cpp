#include "statrn32/Environment.h"

#include <array>
#include <new>

#include "vexutils/BlockIo.h"

namespace statrn32 {

int FailWith(ST_ENV* env, std::string text, int result) {
  if (env != nullptr) env->error = std::move(text);
  return result;
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
  CDescriptor file;
  std::array<char, statrn32::kFirstBytes> first;
  if (name == nullptr || !file.OpenForReading(name)) return -1;
  const std::int64_t got = ReadAt(file.Get(), 0, first.data(), first.size());
  if (got <= 0) return -1;
  const statrn32::FORMAT* const format =
      statrn32::RecogniseFormat({first.data(), static_cast<std::size_t>(got)});
  return format != nullptr ? format->code : -1;
}

int ST_CloseFiles(ST_ENV* env) {
  if (env == nullptr) return -1;
  env->input.reset();
  if (!env->output) return 0;
  statrn32::CWriter& writer = *env->output->writer;
  const int result = writer.Finish() ? 0 : statrn32::FailWith(env, writer.Error());
  env->output.reset();
  return result;
}
