// The reader of text files. The first byte of the input chooses the kind, the second the number of
// variables; the rest is the file. Cases without faults are written and must read back.
#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstdlib>
#include <unistd.h>

#include <sys/mman.h>

#include "datadoc/TextInput.h"
#include "datadoc/TextOpening.h"
#include "datadoc/TextReader.h"
#include "datadoc/TextWriter.h"
#include "vexutils/BlockIo.h"

namespace {

bool Continue(double) {
  return true;
}

std::vector<double> CellsIn(int file) {
  std::vector<double> cells(static_cast<std::size_t>(FileBytes(file)) / sizeof(double));
  ReadAt(file, 0, cells.data(), cells.size() * sizeof(double));
  return cells;
}

// Free format holds every number, so what was read must come back.
void WriteAndReadBack(const std::vector<double>& cells, TEXTSOURCE source) {
  const CDescriptor text(memfd_create("text", MFD_CLOEXEC));
  const CDescriptor again(memfd_create("again", MFD_CLOEXEC));
  CTextWriter writer(text.Get(), {});
  const auto width = static_cast<std::size_t>(source.variables);
  for (std::size_t i = 0; i + width <= cells.size(); i += width) {
    if (!writer.AddRecord({cells.data() + i, width})) std::abort();
  }
  if (!writer.Flush()) std::abort();
  source.file = text.Get();
  source.begin = 0;
  source.fields.clear();
  source.records = 0;
  if (ReadTextCases(source, again.Get(), Continue).Failed()) std::abort();
  const std::vector<double> read = CellsIn(again.Get());
  // By their bits: a minus before a zero is kept.
  const auto same = [](double a, double b) {
    return std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b);
  };
  if (!std::equal(read.begin(), read.end(), cells.begin(), cells.end(), same)) {
    std::abort();
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < 2) return 0;
  const CDescriptor file(memfd_create("fuzz", MFD_CLOEXEC));
  const CDescriptor scratch(memfd_create("scratch", MFD_CLOEXEC));
  if (!WriteAt(file.Get(), 0, data + 2, size - 2)) return 0;
  TEXTSOURCE source;
  source.file = file.Get();
  source.bytes = static_cast<std::int64_t>(size - 2);
  source.variables = 1 + data[1] % 40;
  source.records = (data[0] & 1) != 0 ? 1 + data[1] % 7 : 0;
  const TEXTLINE first = ReadTextLine(file.Get(), 0);
  WordsOf(first.text);
  if ((data[0] & 2) != 0) {
    source.fields = ParseFormat(first.text, static_cast<std::size_t>(source.variables)).fields;
    source.begin = first.next;
    // Wide fields cost time only.
    if (source.fields.size() < static_cast<std::size_t>(source.variables) ||
        source.fields.back().last > 100000) {
      return 0;
    }
  }
  if ((data[0] & 4) == 0) {
    const TEXTRESULT result = ReadTextCases(source, scratch.Get(), Continue);
    const std::vector<double> cells = CellsIn(scratch.Get());
    if (result.Failed() || cells.size() != static_cast<std::size_t>(result.records) *
                                               static_cast<std::size_t>(source.variables)) {
      std::abort();
    }
    WriteAndReadBack(cells, source);
    return 0;
  }
  EXTERNDATA kind;
  kind.matrixPosition = (data[0] >> 3) & 3;
  kind.firstVectorPosition = (data[0] >> 5) & 3;
  kind.secondVectorPosition = (data[0] >> 7) + 1;
  kind.fullMatrix = data[1] & 1;
  const TEXTRESULT result = ReadTextMatrix(source, kind, scratch.Get(), Continue);
  DescribeFaults(result, {});
  return 0;
}
