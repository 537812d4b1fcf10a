// Reads and writes whole files through the ST_ functions, for the tests.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "host/statrn32.h"

namespace sttest {

struct Label {
  double value = 0;
  std::string text;
  char tag = 0;
  std::string label;
};

struct Column {
  std::string name;
  std::string label;
  std::int32_t type = ST_TYPE_NUMERIC;
  int width = 8;
  int decimals = 2;
  std::vector<Label> labels;
};

struct Value {
  int status = ST_STATUS_PRESENT;
  double number = 0;
  std::string text;
  std::int32_t display = 0;
};

struct Table {
  std::vector<Column> columns;
  std::vector<std::vector<Value>> records;
  std::int64_t cases = -1;           // as ST_GetNCases tells
  std::string error;                 // empty when all was read or written
  std::vector<std::string> renamed;  // "old>new"
};

Value Number(double number);
Value Text(std::string text);
Value Missing();

// A folder of its own for a test, removed at the end.
class TempFolder {
 public:
  TempFolder();
  ~TempFolder();
  std::string Name(const std::string& file) const { return path_ + "/" + file; }

 private:
  std::string path_;
};

Table ReadFile(std::int32_t type, const std::string& name);
// `announced` is what ST_SetNCases is told; -1 for the number of records.
Table WriteFile(const Table& table, std::int32_t type, const std::string& name,
                std::int64_t announced = -1);

std::string BytesOf(const std::string& name);
void MakeFile(const std::string& name, const std::string& bytes);

// A file of the collection that VEX_REAL_DATA names; empty when the variable is not set.
std::string RealFile(const std::string& name);

}  // namespace sttest
