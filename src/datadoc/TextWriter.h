// Writes cells as a text data file that TextReader.h reads back to the same values.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

#include "datadoc/FormatStatement.h"
#include "host/Types.h"

// Appends to an open file, from its beginning on. In free format a record is a line of numbers, a
// blank behind each; in fixed format it takes as many lines as its fields say.
class CTextWriter {
 public:
  // Without fields: free format.
  CTextWriter(int file, std::vector<RANGE_KTQ> fields);

  // A line as it stands. False when it cannot be written (errno).
  bool AddLine(std::string_view line);
  // A record; in fixed format there may be no more values than fields. False when a value cannot be
  // held (see BadValue) or the file not be written (errno).
  bool AddRecord(std::span<const double> values);
  // Writes what is still held.
  bool Flush();

  // The value of the last record, counted from 0, that its place cannot hold; -1 when all can be.
  int BadValue() const { return badValue_; }

 private:
  bool AddFree(std::span<const double> values);
  bool AddFixed(std::span<const double> values);
  void FindLines(std::size_t values);
  bool ReadsBack(std::span<const double> values);
  bool FlushWhenLarge();

  // A line of a record: where it begins in text_ and how long it is.
  struct Line {
    std::size_t begin;
    std::size_t size;
  };

  int file_;
  std::vector<RANGE_KTQ> fields_;
  bool overlap_;  // fields share columns
  CString text_;
  std::vector<Line> lines_;  // of records with lineValues_ values, counted from their beginning
  std::size_t lineValues_ = 0;
  std::size_t recordSize_ = 0;
  std::int64_t offset_ = 0;
  int badValue_ = -1;
};
