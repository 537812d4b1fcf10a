// The scan and the readers of text files. The first two bytes choose the type and the settings.
#include <bit>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <unistd.h>

#include <sys/mman.h>

#include "transfer/ConvertData.h"
#include "transfer/TextScan.h"

namespace {

using reader_t = STUtils::basic_text_import_t<char>;
using record_t = std::vector<STUtils::variable_data_t>;

constexpr int kMostRecords = 5000;
constexpr std::size_t kMostCompared = 20'000;  // values

// A number that was read without its text in the quick way is the one that the text stands for.
void Compare(reader_t& reader, const std::vector<record_t>& records, std::size_t columns) {
  reader.SetTextColumns(columns);
  if (!reader.StartRecords()) std::abort();
  record_t texts(columns);
  for (const record_t& record : records) {
    if (!reader.ReadRecord(texts)) std::abort();
    for (std::size_t i = 0; i < columns; ++i) {
      if (record[i].kind != 1 || record[i].missing || !record[i].text.empty()) continue;
      std::string text = texts[i].text;
      PutPoint(reader.Settings().decimalMark, text);
      const auto number = ParseDataNumber(text);
      if (!number || std::bit_cast<std::uint64_t>(number->value) !=
                         std::bit_cast<std::uint64_t>(record[i].value)) {
        std::abort();
      }
    }
  }
}

// Records straight into cells, in blocks of a size that depends on the file, are the same records.
void CompareCells(reader_t& reader, const std::vector<record_t>& records) {
  constexpr double kMissing = -999999;
  const std::size_t width = reader.SelectedColumns();
  if (width == 0 || !reader.StartRecords()) return;
  std::vector<double> cells((1 + records.size() % 7) * width + reader_t::kSpareCells);
  std::size_t at = 0;
  while (at < records.size()) {
    const std::size_t got = reader.ReadNumbers(kMissing, cells);
    if (got == 0) std::abort();
    const double* cell = cells.data();
    for (std::size_t i = 0; i < got && at < records.size(); ++i, ++at) {
      for (const STUtils::variable_data_t& value : records[at]) {
        if (value.kind == 0) continue;  // not selected
        const bool missing = value.kind != 1 || value.missing;
        const double expected = missing ? kMissing : value.value;
        if (std::bit_cast<std::uint64_t>(*cell++) != std::bit_cast<std::uint64_t>(expected)) {
          std::abort();
        }
      }
    }
  }
}

void ReadAll(reader_t& reader) {
  bool hasNames = false;
  std::vector<STUtils::variable_info_t> variables;
  if (!STUtils::SenseTextData(reader, hasNames, variables, {})) return;
  if (variables.empty()) std::abort();
  for (std::size_t i = 0; i < variables.size(); ++i) {
    variables[i].selected = i % 5 != 4;
    if (variables[i].type != 2) variables[i].type = 1;
  }
  reader.SetVariables(variables);
  record_t values(variables.size());
  for (std::size_t i = 0; i < variables.size(); ++i) {
    values[i].kind = variables[i].selected ? variables[i].type : 0;
  }
  std::vector<record_t> compared;
  reader.StartRecords();
  for (int record = 0; record < kMostRecords && reader.ReadRecord(values); ++record) {
    for (std::size_t i = 0; i < variables.size(); ++i) {
      if (values[i].missing && values[i].value != 0) std::abort();
    }
    if (compared.size() * variables.size() < kMostCompared) compared.push_back(values);
  }
  reader.ClearError();
  CompareCells(reader, compared);
  reader.ClearError();
  Compare(reader, compared, variables.size());
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
  reader_t reader;
  const std::string name = "/proc/self/fd/" + std::to_string(descriptor);
  if (reader.Open(name, 1001 + (data[0] & 7) % 5) && reader.Configure(settings)) ReadAll(reader);
  close(descriptor);
  return 0;
}
