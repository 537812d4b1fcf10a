// The reader of system data files, and the cells behind the description.
#include <cstdint>
#include <cstdlib>
#include <unistd.h>

#include <sys/mman.h>

#include "datadoc/TextDump.h"
#include "datadoc/VsfReader.h"
#include "vexutils/BlockIo.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const CDescriptor file(memfd_create("fuzz", MFD_CLOEXEC));
  if (!WriteAt(file.Get(), 0, data, size)) return 0;
  VsfContents contents;
  if (ReadVsf(file.Get(), contents) != VsfStatus::Ok) return 0;
  const TORVIKSTRUCT& read = contents.data;
  const auto variables = static_cast<std::size_t>(read.variables);
  if (read.variable.size() != variables || contents.AbsentCells() < 0 || read.records < 0)
    std::abort();
  for (const VARSTRUCT& variable : read.variable) {
    if (variable.categories < 0 || variable.categories > 15) std::abort();
  }
  // Only what is there is dumped: a damaged header can promise no more.
  if (static_cast<std::size_t>(contents.wholeCells) * sizeof(double) > size) std::abort();
  std::size_t dumped = 0;
  DumpCells(file.Get(), contents.cellsOffset, {read.variables, 0, read.records, {}},
            [&](std::string_view text) {
              dumped += text.size();
              return true;
            });
  if (dumped != (variables * 16 + 2) * static_cast<std::size_t>(read.records)) std::abort();
  return 0;
}
