#include "FuzzFile.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <string>
#include <unistd.h>

#include <sys/mman.h>

#include "host/statrn32.h"

namespace {

constexpr std::int64_t kMostValues = 1'000'000;

// Touches what the calls hand out, so that a pointer that leads nowhere is noticed.
void ReadVariable(ST_FILE* file, int var) {
  std::size_t length =
      std::strlen(ST_GetVarName(file, var)) + std::strlen(ST_GetVarLabel(file, var));
  for (int i = 0; i < ST_GetNValueLabels(file, var); ++i) {
    ST_LABEL label{};
    if (ST_GetValueLabel(file, var, i, &label) != 0) std::abort();
    length += std::strlen(label.label) + (label.text != nullptr ? std::strlen(label.text) : 0);
  }
  if (length > (std::size_t{1} << 30)) std::abort();
}

void ReadValue(ST_FILE* file, int var) {
  std::int32_t type = 0;
  std::int32_t display = 0;
  const void* value = nullptr;
  if (ST_GetVarDataExt(file, var, &type, &value, &display) == ST_STATUS_ERROR) std::abort();
  if (type == ST_TYPE_STRING) {
    if (std::strlen(static_cast<const char*>(value)) > (std::size_t{1} << 30)) std::abort();
  } else if (type == ST_TYPE_DATE) {
    char text[40];
    const double number = *static_cast<const double*>(value);
    ST_FormatDate(file, var, number, text, sizeof text);
    ST_FromIDate(file, number, display, &type, &display);
  }
}

void ReadRecords(ST_FILE* file, int variables) {
  std::int64_t values = 0;
  while (values < kMostValues && ST_ReadRecord(file) == 1) {
    for (int var = 0; var < variables; ++var) ReadValue(file, var);
    values += variables;
  }
}

void ReadFile(std::int32_t type, const std::string& name) {
  // What a connection file leads to is none of the reader's business.
  const bool database = ST_LeadsToDatabase(name.c_str());
  ST_ENV* const env = ST_OpenEnvironment();
  ST_FILE* const file = database ? nullptr : ST_OpenInputFile(env, type, name.c_str());
  const int variables = file != nullptr ? ST_ReadDict(file) : -1;
  for (int var = 0; var < variables; ++var) ReadVariable(file, var);
  if (variables >= 0) ReadRecords(file, variables);
  ST_CloseEnvironment(env);
}

// A folder of this process's own, in memory.
const std::string& Folder() {
  static const std::string folder = [] {
    std::string name = "/dev/shm/vex-fuzz-XXXXXX";
    if (mkdtemp(name.data()) == nullptr) std::abort();
    return name;
  }();
  return folder;
}

void Write(const std::string& name, const std::uint8_t* data, std::size_t size) {
  std::ofstream(name, std::ios::binary)
      .write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
}

}  // namespace

void FuzzStatFile(std::int32_t type, const std::uint8_t* data, std::size_t size) {
  const int descriptor = memfd_create("input", 0);
  if (descriptor < 0 || write(descriptor, data, size) != static_cast<ssize_t>(size)) std::abort();
  // Not by "self": some readers work in a process of their own.
  const std::string name =
      "/proc/" + std::to_string(getpid()) + "/fd/" + std::to_string(descriptor);
  ReadFile(type, name);
  close(descriptor);
}

void FuzzStatFilePair(std::int32_t type, const char* main, const char* beside,
                      const std::uint8_t* data, std::size_t size) {
  constexpr std::size_t kHead = 2;
  if (size < kHead) return;
  const std::size_t told = data[0] | static_cast<std::size_t>(data[1]) << 8;
  const std::size_t besideBytes = std::min(told, size - kHead);
  const std::string stem = Folder() + "/f.";
  Write(stem + beside, data + kHead, besideBytes);
  Write(stem + main, data + kHead + besideBytes, size - kHead - besideBytes);
  ReadFile(type, stem + main);
}
