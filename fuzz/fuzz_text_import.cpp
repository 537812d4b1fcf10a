// The scan and the readers of text files. The first two bytes choose the type and the settings.
#include <cstdint>
#include <cstdlib>
#include <string>
#include <unistd.h>

#include <sys/mman.h>

#include "transfer/TextScan.h"

namespace {

constexpr int kMostRecords = 5000;

void ReadAll(STUtils::basic_text_import_t<char>& reader) {
  bool hasNames = false;
  std::vector<STUtils::variable_info_t> variables;
  if (!STUtils::SenseTextData(reader, hasNames, variables, {})) return;
  if (variables.empty()) std::abort();
  for (std::size_t i = 0; i < variables.size(); ++i) {
    variables[i].selected = i % 5 != 4;
    if (variables[i].type != 2) variables[i].type = 1;
  }
  reader.SetVariables(variables);
  std::vector<STUtils::variable_data_t> values(variables.size());
  reader.StartRecords();
  for (int record = 0; record < kMostRecords && reader.ReadRecord(values); ++record) {
    for (std::size_t i = 0; i < variables.size(); ++i) {
      if (values[i].missing && values[i].value != 0) std::abort();
    }
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < 2) return 0;
  const int descriptor = memfd_create("input", 0);
  if (descriptor < 0 || write(descriptor, data + 2, size - 2) != static_cast<ssize_t>(size - 2)) {
    std::abort();
  }
  STUtils::TextSettings settings;
  if ((data[1] & 1) != 0) settings.decimalMark = ',';
  if ((data[1] & 2) != 0) settings.delimiter = static_cast<char>(data[1] >> 2 | 0x20);
  if ((data[0] & 8) != 0) settings.hasNames = (data[0] & 16) != 0;
  if ((data[0] & 32) != 0) {
    settings.encoding = static_cast<STUtils::TextEncoding>(data[0] >> 6 & 3);
  }
  STUtils::basic_text_import_t<char> reader;
  const std::string name = "/proc/self/fd/" + std::to_string(descriptor);
  if (reader.Open(name, 1001 + (data[0] & 7) % 5) && reader.Configure(settings)) ReadAll(reader);
  close(descriptor);
  return 0;
}
