// The plain text dump of cells: 16 characters a cell ("%15.6G "), each record a line that ends in a
// blank.
#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <string_view>
#include <vector>

// Told the text in large pieces; returns false when it could not be taken.
using TextSink = std::function<bool(std::string_view)>;

// Which cells of a file of cells are dumped.
struct DumpRange {
  std::int32_t variables = 0;    // doubles per record
  std::int64_t recordBegin = 0;  // half-open, counted from 0
  std::int64_t recordEnd = 0;
  std::vector<std::int32_t> columns;  // counted from 0, in the order wanted; empty: all
};

// Reads the cells from `file` at `cellsOffset`. False with the reason in errno when the file is too
// short or the sink stopped.
bool DumpCells(int file, std::int64_t cellsOffset, const DumpRange& range, const TextSink& sink);
