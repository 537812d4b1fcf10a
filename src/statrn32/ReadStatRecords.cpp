#include "statrn32/ReadStatRecords.h"

#include <algorithm>
#include <cmath>
#include <new>

#include "host/statrn32.h"

namespace statrn32 {
namespace {

// Small enough for a block to be still in the cache when the other thread reads it.
constexpr std::size_t kBytesPerBlock = std::size_t{256} << 10;
constexpr std::size_t kTextPerBlock = std::size_t{1} << 20;
constexpr std::size_t kTextPerRecord = std::size_t{64} << 20;

bool IsUserMissing(const MISSING_RANGE* ranges, std::size_t count, double number) {
  for (std::size_t i = 0; i < count; ++i) {
    if (number >= ranges[i].low && number <= ranges[i].high) return true;
  }
  return false;
}

bool IsUserMissing(const MISSING_RANGE* ranges, std::size_t count, std::string_view text) {
  for (std::size_t i = 0; i < count; ++i) {
    if (text >= ranges[i].lowText && text <= ranges[i].highText) return true;
  }
  return false;
}

double NumberOf(const readstat_value_t& value) {
  switch (value.type) {
    case READSTAT_TYPE_INT8:
      return value.v.i8_value;
    case READSTAT_TYPE_INT16:
      return value.v.i16_value;
    case READSTAT_TYPE_INT32:
      return value.v.i32_value;
    case READSTAT_TYPE_FLOAT:
      return static_cast<double>(value.v.float_value);
    default:
      return value.v.double_value;
  }
}

}  // namespace

CRecordPass::CRecordPass(const READSTAT_FORMAT& format, CInputFile* input,
                         const DICTIONARY& dictionary, const std::string& encoding,
                         CBlockRing* ring)
    : format_(format), input_(input), ring_(ring) {
  decoder_.SetEncoding(encoding.c_str());
  columns_.reserve(dictionary.variables.size());
  for (const VARIABLE& variable : dictionary.variables) {
    columns_.push_back(
        {variable.missing.data(), variable.missing.size(), variable.type == ST_TYPE_STRING});
  }
  const std::size_t bytes = std::max<std::size_t>(1, columns_.size() * (sizeof(CELL) + 1));
  recordsPerBlock_ = std::max<std::size_t>(1, kBytesPerBlock / bytes);
}

void CRecordPass::Run() {
  try {
    const PARSER parser = MakeParser(input_);
    result_.code = READSTAT_ERROR_MALLOC;
    if (parser && NextBlock()) {
      readstat_set_variable_handler(parser.get(), OnVariable);
      readstat_set_value_handler(parser.get(), OnValue);
      readstat_set_error_handler(parser.get(), OnError);
      result_.code = format_.parse(parser.get(), "", this);
      if (block_ != nullptr && block_->records > 0) ring_->EndFill();
    }
  } catch (const std::bad_alloc&) {
    result_.code = READSTAT_ERROR_MALLOC;
  }
  result_.position = input_->Position();
  result_.records = records_;
  ring_->Finish();
}

int CRecordPass::OnVariable(int /*index*/, readstat_variable_t* /*variable*/,
                            const char* /*labels*/, void* /*context*/) {
  return READSTAT_HANDLER_OK;
}

void CRecordPass::OnError(const char* message, void* context) {
  if (message != nullptr) static_cast<CRecordPass*>(context)->result_.detail = message;
}

int CRecordPass::OnValue(int /*record*/, readstat_variable_t* variable, readstat_value_t value,
                         void* context) {
  auto& pass = *static_cast<CRecordPass*>(context);
  const int count = static_cast<int>(pass.columns_.size());
  // Records of a damaged file may break off; the values of the next would come to stand in their
  // place.
  if (variable->index != pass.next_ || pass.next_ >= count) {
    pass.Refuse("the file is damaged: a record is not complete");
    return READSTAT_HANDLER_ABORT;
  }
  try {
    const COLUMN& column = pass.columns_[static_cast<std::size_t>(pass.next_)];
    const bool done = column.isText ? pass.TakeText(column, value) : pass.TakeNumber(column, value);
    if (!done) return READSTAT_HANDLER_ABORT;
    if (++pass.next_ < count) return READSTAT_HANDLER_OK;
    return pass.EndRecord() ? READSTAT_HANDLER_OK : READSTAT_HANDLER_ABORT;
  } catch (const std::bad_alloc&) {
    pass.Refuse("not enough memory for this record");
    return READSTAT_HANDLER_ABORT;
  }
}

inline bool CRecordPass::TakeNumber(const COLUMN& column, const readstat_value_t& value) {
  CELL& cell = cells_[next_];
  std::uint8_t& status = status_[next_];
  double number = NumberOf(value);
  std::uint8_t result = ST_STATUS_PRESENT;
  if (value.tag != 0) {
    result = ST_STATUS_TAGGED;
    number = 0;
  } else if (value.is_system_missing != 0 || std::isnan(number)) {
    result = ST_STATUS_MISSING;
    number = 0;
  } else if (column.rangeCount != 0 && IsUserMissing(column.ranges, column.rangeCount, number)) {
    result = ST_STATUS_USER_MISSING;
  }
  cell.number = number;
  status = result;
  return true;
}

bool CRecordPass::TakeText(const COLUMN& column, const readstat_value_t& value) {
  if (value.type != READSTAT_TYPE_STRING && value.type != READSTAT_TYPE_STRING_REF) {
    return Refuse("the file is damaged: a number stands where a text is expected");
  }
  std::string& texts = block_->texts;
  CELL& cell = cells_[next_];
  cell.text = 0;
  status_[next_] = ST_STATUS_PRESENT;
  std::string_view text;
  if (value.v.string_value != nullptr && *value.v.string_value != '\0') {
    const std::size_t begin = texts.size();
    decoder_.Append(value.v.string_value, &texts);
    if (texts.size() > begin) {
      cell.text = begin;
      texts.push_back('\0');
      text = std::string_view(texts).substr(begin, texts.size() - begin - 1);
      if (texts.size() - textBegin_ > kTextPerRecord) {
        return Refuse("this record holds more text than can be read");
      }
    }
  }
  if (column.rangeCount != 0 && IsUserMissing(column.ranges, column.rangeCount, text)) {
    status_[next_] = ST_STATUS_USER_MISSING;
  }
  return true;
}

bool CRecordPass::EndRecord() {
  next_ = 0;
  ++records_;
  ++block_->records;
  if (block_->records == recordsPerBlock_ || block_->texts.size() > kTextPerBlock) {
    ring_->EndFill();
    return NextBlock();
  }
  cells_ += columns_.size();
  status_ += columns_.size();
  textBegin_ = block_->texts.size();
  return true;
}

bool CRecordPass::NextBlock() {
  block_ = ring_->BeginFill();
  if (block_ == nullptr) return false;
  const std::size_t cells = recordsPerBlock_ * columns_.size();
  if (block_->cells.size() < cells) {
    block_->cells.resize(cells);
    block_->status.resize(cells);
  }
  cells_ = block_->cells.data();
  status_ = block_->status.data();
  textBegin_ = block_->texts.size();
  return true;
}

bool CRecordPass::Refuse(const char* reason) {
  result_.refusal = reason;
  return false;
}

}  // namespace statrn32
