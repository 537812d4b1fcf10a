#include "datadoc/TextDump.h"

#include <algorithm>
#include <unistd.h>

#include "datadoc/DataDoc.h"
#include "datadoc/VsfLayout.h"
#include "dataview/DataView.h"
#include "host/Host.h"
#include "host/Numbers.h"
#include "vexutils/BlockIo.h"
#include "vexutils/SideFile.h"

namespace {

void AppendRecord(std::span<const double> record, const std::vector<std::int32_t>& columns,
                  CString& text) {
  const auto append = [&](double value) {
    AppendDumpValue(value, text);
    text += ' ';
  };
  if (columns.empty()) {
    for (const double value : record) append(value);
  } else {
    for (const std::int32_t column : columns) append(record[static_cast<std::size_t>(column)]);
  }
  text += " \n";
}

}  // namespace

bool DumpCells(int file, std::int64_t cellsOffset, const DumpRange& range, const TextSink& sink) {
  const auto variables = static_cast<std::size_t>(range.variables);
  const std::size_t recordBytes = variables * kCellBytes;
  const std::size_t recordsAtOnce =
      std::max<std::size_t>(1, kBlockBytes / std::max<std::size_t>(recordBytes, kCellBytes));
  std::vector<double> block(recordsAtOnce * variables);
  CString text;
  for (std::int64_t first = range.recordBegin; first < range.recordEnd;) {
    const auto count = static_cast<std::size_t>(
        std::min<std::int64_t>(range.recordEnd - first, static_cast<std::int64_t>(recordsAtOnce)));
    const std::int64_t offset = cellsOffset + CellBytes(first, range.variables);
    const std::int64_t got = ReadAt(file, offset, block.data(), count * recordBytes);
    if (got < 0) return false;
    // A file that ends early is read as far as it goes.
    std::fill(block.begin() + got / static_cast<std::int64_t>(kCellBytes), block.end(),
              kMissingCode);
    for (std::size_t i = 0; i < count; ++i) {
      AppendRecord({block.data() + i * variables, variables}, range.columns, text);
      if (text.size() < kBlockBytes) continue;
      if (!sink(text)) return false;
      text.clear();
    }
    first += static_cast<std::int64_t>(count);
  }
  return text.empty() || sink(text);
}

int CDataDoc::CopyDataToAscii(const CString& fileName) {
  CDataView* const view = GetDataView();
  if (view == nullptr) return 0;
  std::FILE* const scratch = view->OpenScratchFile("rb");
  CSideFile target;
  std::int64_t size = 0;
  const auto progress = Host().StartProgress("Writing " + fileName);
  const auto bytesToCome = static_cast<double>(data_.records) * data_.variables * 16;
  bool stopped = false;
  const auto write = [&](std::string_view text) {
    if (!WriteAt(target.Descriptor(), size, text.data(), text.size())) return false;
    size += static_cast<std::int64_t>(text.size());
    stopped = !progress->Advance(static_cast<double>(size) / bytesToCome);
    return !stopped;
  };
  const bool written =
      scratch != nullptr && target.Create(fileName) &&
      DumpCells(fileno(scratch), 0, {data_.variables, 0, data_.records, {}}, write) &&
      target.Commit();
  view->ReopenFile();
  if (!written && !stopped) AfxMessageBox("Cannot write to file!");
  return written ? 1 : 0;
}
