// The rows that the grid drew last, so that a repaint does not read them again.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "host/DataTable.h"

// Holds a few hundred rows however many there are, and asks the client for one row at a time. The
// client is not owned.
class CRowCache {
 public:
  void SetClient(CDataTableClient* client);
  void SetColumnCount(int columns);
  void Clear();

  // The values of a row, one a column, valid until the next call that is not const. Empty: there is
  // no such row.
  std::span<const double> Row(std::int64_t row);

  std::size_t SlotCount() const { return slots_.size(); }

 private:
  struct Slot {
    std::int64_t row = -1;  // -1: holds nothing yet
    bool present = false;   // false: the client has no such row
    std::vector<double> values;
  };

  CDataTableClient* client_ = nullptr;
  int columns_ = 0;
  std::vector<Slot> slots_;  // row r lies in slot r modulo their number
};
