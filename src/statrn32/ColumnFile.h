// A file whose columns stand one behind the other, filled record by record.
#pragma once

#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "vexutils/BlockIo.h"

namespace statrn32 {

// Every column has elements of one size at a place of its own. A few megabytes are kept and then
// written to all columns. A failure leaves its reason in Reason(); later calls fail too.
class CColumnFile {
 public:
  // Creates or empties the file; without a name, one that is gone when it is closed.
  bool Create(const std::string& name);
  // Before the first record.
  void AddColumn(std::int64_t offset, std::size_t elementBytes);

  // One element of the record that is being filled; one that is not put is zero.
  char* Element(std::size_t column);
  bool EndRecord();

  // Bytes outside of the columns.
  bool Write(std::int64_t offset, std::string_view bytes);
  // Bytes that were written; after Flush also of the columns.
  bool Read(std::int64_t offset, char* data, std::size_t size);
  // Hands on the `count` elements of a column that begins at `offset`, as many at a time as make a
  // block: take(bytes) is given whole elements and tells whether to go on. False when it did not,
  // or when reading failed.
  template <typename TAKE>
  bool ReadColumn(std::int64_t offset, std::size_t elementBytes, std::int64_t count, TAKE take);
  bool Flush();
  bool Close();
  const std::string& Reason() const { return reason_; }

 private:
  struct COLUMN {
    std::int64_t offset;  // of the next block
    std::size_t bytes;
    std::vector<char> block;
  };
  bool Fail();

  CDescriptor file_;
  std::vector<COLUMN> columns_;
  std::size_t recordBytes_ = 0;
  std::size_t used_ = 0;      // records in the blocks
  std::size_t capacity_ = 0;  // of the blocks, once the columns are known
  std::string reason_;
};

template <typename TAKE>
bool CColumnFile::ReadColumn(std::int64_t offset, std::size_t elementBytes, std::int64_t count,
                             TAKE take) {
  const auto most =
      std::max<std::int64_t>(1, static_cast<std::int64_t>(kBlockBytes / elementBytes));
  std::string block;
  while (count > 0) {
    const std::int64_t part = std::min(most, count);
    block.resize(static_cast<std::size_t>(part) * elementBytes);
    if (!Read(offset, block.data(), block.size()) || !take(std::string_view(block))) return false;
    offset += static_cast<std::int64_t>(block.size());
    count -= part;
  }
  return true;
}

}  // namespace statrn32
