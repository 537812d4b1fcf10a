// Writes the formats that ReadStat knows.
#pragma once

#include <cstdint>
#include <memory>
#include <readstat.h>
#include <string>
#include <vector>

#include "statrn32/OutputFile.h"
#include "statrn32/Writer.h"

namespace statrn32 {

// What a format can hold.
struct READSTAT_TARGET {
  readstat_error_t (*begin)(readstat_writer_t* writer, void* context, long records);
  std::uint8_t version = 0;  // of the format; 0: as ReadStat chooses
  readstat_compress_t (*compression)(const std::string& fileName);
  const char* numberFormat;  // printf pattern for width and decimals
  std::size_t labelBytes;
  std::size_t valueLabelBytes;  // 0: has no value labels
  std::size_t textBytes;        // widest text variable
  std::size_t variables = static_cast<std::size_t>(-1);
  bool wholeLabels;  // only whole numbers have labels
  double largest;    // largest size of a number
};

class CReadStatWriter : public CWriter {
 public:
  explicit CReadStatWriter(const READSTAT_TARGET& target) : target_(target) {}
  ~CReadStatWriter() override;

  bool Begin(const std::string& name, const DICTIONARY& dictionary, std::int64_t cases) override;
  bool WriteRecord(const std::vector<OUT_CELL>& cells) override;
  bool Finish() override;

 private:
  struct COLUMN {
    readstat_variable_t* variable;
    std::string name;
    std::size_t textBytes;  // 0: a number
  };

  static ssize_t OnWrite(const void* data, std::size_t size, void* context);
  static void OnError(const char* message, void* context);

  bool AddVariable(const VARIABLE& variable, const std::vector<readstat_label_set_t*>& sets);
  std::vector<readstat_label_set_t*> AddLabelSets(const DICTIONARY& dictionary);
  bool WriteCell(const COLUMN& column, const OUT_CELL& cell);
  bool WriteNumber(const COLUMN& column, double number);
  bool WriteText(const COLUMN& column, const std::string& text);
  bool Check(readstat_error_t code, const std::string& what);

  const READSTAT_TARGET& target_;
  std::string name_;
  COutputFile file_;
  readstat_writer_t* writer_ = nullptr;
  bool begun_ = false;  // and not yet ended
  bool rowBegun_ = false;
  std::vector<COLUMN> columns_;
  std::int64_t cases_ = 0;
  std::int64_t written_ = 0;
  std::string detail_;
};

}  // namespace statrn32
