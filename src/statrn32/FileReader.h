// Base of the readers of formats that this program reads by itself.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "statrn32/InputFile.h"
#include "statrn32/Reader.h"
#include "statrn32/TextDecoder.h"

namespace statrn32 {

// Fills a block value by value, in the order of the variables. Nothing is allocated for a value.
class CBlockFiller {
 public:
  // Prepares `block` for up to `records` records.
  CBlockFiller(RECORD_BLOCK* block, std::size_t variables, std::size_t records)
      : block_(block), variables_(variables), records_(records) {
    block->Clear();
    block->cells.resize(variables * records);
    block->status.resize(variables * records);
    cell_ = block->cells.data();
    status_ = block->status.data();
  }

  // Takes no more records?
  bool Full() const { return block_->records >= records_ || block_->texts.size() > kTextBytes; }

  void Number(double number) { Put(number, ST_STATUS_PRESENT_); }
  // Missing, of a numeric or date variable; `number` is the file's own where it has one.
  void MissingNumber(std::uint8_t status, double number = 0) { Put(number, status); }
  // Text in UTF-8; what stands behind a NUL is lost.
  void Text(std::string_view text, std::uint8_t status = 0) {
    cell_->text = text.empty() ? 0 : block_->texts.size();
    if (!text.empty()) block_->texts.append(text) += '\0';
    ++cell_, *status_++ = status;
  }
  // Text in the file's own bytes.
  void Text(CTextDecoder* decoder, std::string_view bytes) {
    const std::size_t begin = block_->texts.size();
    decoder->Append(bytes, &block_->texts);
    const bool empty = block_->texts.size() == begin;
    cell_->text = empty ? 0 : begin;
    if (!empty) block_->texts += '\0';
    ++cell_, *status_++ = 0;
  }
  // After one value for each variable.
  void EndRecord() { ++block_->records; }
  // Takes back the values of a record that was begun.
  void DropRecord() {
    cell_ = block_->cells.data() + block_->records * variables_;
    status_ = block_->status.data() + block_->records * variables_;
  }

 private:
  static constexpr std::uint8_t ST_STATUS_PRESENT_ = 0;
  static constexpr std::size_t kTextBytes = std::size_t{1} << 20;

  void Put(double number, std::uint8_t status) {
    (cell_++)->number = number;
    *status_++ = status;
  }

  RECORD_BLOCK* block_;
  std::size_t variables_;
  std::size_t records_;
  CELL* cell_;
  std::uint8_t* status_;
};

// What the date numbers of one format count.
struct DATE_FAMILY {
  std::int64_t epochDay = kSerialEpochDay;
  DATE_KIND date = DATE_KIND::SerialDate;
  DATE_KIND moment = DATE_KIND::SerialMoment;
  DATE_KIND time = DATE_KIND::SerialTime;
};

// A derived class looks at the header in ReadHeader and hands over records in FillBlock.
class CFileReader : public CReader {
 public:
  bool Open(const std::string& name) final;
  bool ReadDictionary(DICTIONARY* out) final;
  const RECORD_BLOCK* NextBlock() final;
  double Progress() const override { return input_.Progress(); }
  std::int64_t EpochDay() const override { return dates_.epochDay; }
  DATE_KIND DateKindOf(std::int32_t display) const override;

 protected:
  // `code` is the format's row in the registry.
  explicit CFileReader(std::int32_t code) : code_(code) {}

  // The file is open, its signature is right and its position is the start. What can be told
  // without the dictionary (Tables) is found here.
  virtual bool LookInside() { return true; }
  // The dictionary; called once. Leaves the file where the records begin, or remembers the place.
  virtual bool ReadHeader(DICTIONARY* out) = 0;
  // Appends records until the block is full or there are no more. After FailFile no more is asked.
  virtual void FillBlock(CBlockFiller* out) = 0;

  // Says the name of the file and what is wrong with it.
  bool FailFile(const std::string& what) { return Fail(name_ + ": " + what); }
  // Reads exactly so many bytes, else fails with what the file ends within.
  bool ReadExactly(void* data, std::int64_t size, const char* within);
  // The whole file; fails when it has more than `most` bytes.
  bool ReadWhole(std::string* out, std::int64_t most);

  CInputFile& Input() { return input_; }
  const std::string& Name() const { return name_; }
  void SetDates(const DATE_FAMILY& dates) { dates_ = dates; }

 private:
  static constexpr std::size_t kValuesAtOnce = std::size_t{1} << 15;

  std::int32_t code_;
  std::string name_;
  CInputFile input_;
  DATE_FAMILY dates_;
  std::size_t variables_ = 0;
  RECORD_BLOCK block_;
};

}  // namespace statrn32
