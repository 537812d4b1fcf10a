// The description of one table of an Access database, and its rows as fields.
//
// A description begins at a page of type 2 and goes on in the pages that the u32 at 4 names, behind
// their first 8 bytes. Places, Jet 3 / Jet 4: u16 columns of variable length at 23/43, u16 columns
// at 25/45, u32 indexes at 31/51, the usage map's pointer at 35/55; from 43/63 on 8/12 bytes for an
// index, then 18/25 bytes for a column, then the columns' names, each behind its length (one byte
// or two).
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "statrn32/AccessPages.h"

namespace statrn32 {

class CTextDecoder;

enum class ACCESS_TYPE : std::uint8_t {
  Logical = 1,
  Byte = 2,
  Int16 = 3,
  Int32 = 4,
  Money = 5,
  Float = 6,
  Double = 7,
  Moment = 8,
  Binary = 9,
  Text = 10,
  Object = 11,
  Memo = 12,
  Guid = 15,
  Decimal = 16,
  List = 18,
  Int64 = 19,
};

struct ACCESS_COLUMN {
  std::string name;
  ACCESS_TYPE type = ACCESS_TYPE::Text;
  std::size_t number = 0;  // of its bit among those that tell of missing values
  bool fixed = false;      // of fixed length: has a place, else an index
  std::size_t place = 0;   // behind the row's count of columns
  std::size_t index = 0;   // among the fields of variable length
  std::size_t bytes = 0;   // of a field; 0 for a memo
  unsigned precision = 0;  // of a decimal
  unsigned scale = 0;
};

struct ACCESS_TABLE {
  std::vector<ACCESS_COLUMN> columns;  // in the order that people see
  bool anyVariable = false;            // has columns of variable length
  std::uint32_t usageMap = 0;          // pointer
};

// The table that is described at `page`. False when there is no such description or it is damaged.
// `decoder` turns the names of Jet 3 into UTF-8.
bool ReadAccessTable(const CAccessPages& pages, std::uint32_t page, CTextDecoder* decoder,
                     ACCESS_TABLE* out);

// One row, cut into its fields.
class CAccessRow {
 public:
  // False when the row is damaged. The bytes must live as long as the fields are asked for.
  bool Split(const CAccessPages& pages, const ACCESS_TABLE& table, std::string_view bytes);
  // Empty when the value is missing. A logical column has no bytes: its value is Bit().
  std::string_view Field(const ACCESS_COLUMN& column) const;
  bool Bit(const ACCESS_COLUMN& column) const;

 private:
  bool FindVariable(bool jet4, std::size_t maskBytes);
  bool FindVariable3(std::size_t maskBytes);

  std::string_view bytes_;
  std::size_t head_ = 0;
  std::size_t columns_ = 0;
  std::string_view mask_;
  std::vector<std::size_t> ends_;  // where field i of variable length begins and i - 1 ends
};

}  // namespace statrn32
