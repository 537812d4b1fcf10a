#include "datadoc/TextReader.h"

#include <algorithm>
#include <cerrno>
#include <limits>
#include <memory>
#include <unistd.h>

#include <boost/format.hpp>

#include "datadoc/DataSet.h"
#include "datadoc/FieldText.h"
#include "datadoc/MatrixParts.h"
#include "datadoc/TextInput.h"
#include "datadoc/VsfLayout.h"
#include "host/Text.h"
#include "vexutils/BlockIo.h"

namespace {

constexpr std::size_t kCellBlockBytes = std::size_t{128} << 10;
constexpr std::size_t kMostShown = 30;  // characters of a text in a message
constexpr const char* kTooMany = "The file holds more than 2,147,483,647 cases.";

// Gathers records and writes them in blocks.
class CCellBlocks {
 public:
  CCellBlocks(int file, std::int32_t variables)
      : file_(file),
        width_(static_cast<std::size_t>(variables)),
        cells_(std::max<std::size_t>(1, kCellBlockBytes / (width_ * kCellBytes)) * width_) {}

  // Room for the next record; what stood there before is of no meaning.
  double* Next() { return cells_.data() + used_; }
  // Takes the record that was put there. False when it cannot be written.
  bool Take() {
    used_ += width_;
    return used_ < cells_.size() || Flush();
  }
  bool Flush() {
    const std::size_t bytes = used_ * kCellBytes;
    if (!WriteAt(file_, offset_, cells_.data(), bytes)) return false;
    offset_ += static_cast<std::int64_t>(bytes);
    used_ = 0;
    return true;
  }
  bool IsEmpty() const { return used_ == 0; }

 private:
  int file_;
  std::size_t width_;
  std::vector<double> cells_;
  std::size_t used_ = 0;
  std::int64_t offset_ = 0;
};

// Gives out the numbers record by record and keeps account of what is none.
class CRecordSource {
 public:
  CRecordSource(const TEXTSOURCE& source, TEXTRESULT& result)
      : input_(source.file, source.begin, ColumnsOf(source.fields)), result_(result) {}
  virtual ~CRecordSource() = default;
  CRecordSource(const CRecordSource&) = delete;
  CRecordSource& operator=(const CRecordSource&) = delete;

  // Reads `count` numbers and says how many there were; fewer only at the end of the file.
  virtual std::size_t Read(double* values, std::size_t count) = 0;
  // Is there anything but blanks left?
  bool HasMore() {
    std::string_view word;
    return input_.NextWord(word);
  }
  // Did the last record hold blanks only?
  bool WasBlank() const { return blank_; }
  std::int64_t Offset() const { return input_.Offset(); }
  int Error() const { return input_.Error(); }

 protected:
  void Note(FieldState state, std::string_view text, std::size_t variable) {
    if (state == FieldState::Blank) {
      ++result_.blanks;
      return;
    }
    TEXTFAULTS& faults = state == FieldState::Part ? result_.partial : result_.unreadable;
    if (faults.count++ > 0) return;
    faults.record = record_;
    faults.variable = static_cast<std::int32_t>(variable);
    faults.text = TextForDisplay(Trimmed(text).substr(0, kMostShown));
  }

  CTextInput input_;
  std::int64_t record_ = 0;
  bool blank_ = false;

 private:
  static std::size_t ColumnsOf(const std::vector<RANGE_KTQ>& fields) {
    std::size_t columns = 1;
    for (const RANGE_KTQ& field : fields) {
      columns = std::max(columns, static_cast<std::size_t>(field.last) + 1);
    }
    return columns;
  }

  TEXTRESULT& result_;
};

class CFreeRecords final : public CRecordSource {
 public:
  using CRecordSource::CRecordSource;

  std::size_t Read(double* values, std::size_t count) override {
    ++record_;
    std::string_view word;
    for (std::size_t i = 0; i < count; ++i) {
      if (!input_.NextWord(word)) return i;
      FieldState state = FieldState::Number;
      values[i] = ReadField(word, 0, state);
      if (state != FieldState::Number) Note(state, word, i);
    }
    return count;
  }
};

class CFixedRecords final : public CRecordSource {
 public:
  CFixedRecords(const TEXTSOURCE& source, TEXTRESULT& result)
      : CRecordSource(source, result), fields_(source.fields) {}

  std::size_t Read(double* values, std::size_t count) override {
    ++record_;
    blank_ = true;
    std::string_view line;
    std::int32_t lineNumber = -1;
    for (std::size_t i = 0; i < count; ++i) {
      const RANGE_KTQ& field = fields_[i];
      for (; lineNumber < field.line; ++lineNumber) {
        if (!input_.NextLine(line)) return i;
        blank_ = blank_ && std::all_of(line.begin(), line.end(), IsTextBlank);
      }
      const std::size_t first = std::min(static_cast<std::size_t>(field.first), line.size());
      const std::string_view text = line.substr(first, static_cast<std::size_t>(field.Width()));
      FieldState state = FieldState::Number;
      values[i] = ReadField(text, field.decimals, state);
      if (state != FieldState::Number) Note(state, text, i);
    }
    return count;
  }

 private:
  const std::vector<RANGE_KTQ>& fields_;
};

std::unique_ptr<CRecordSource> Records(const TEXTSOURCE& source, TEXTRESULT& result) {
  if (source.fields.empty()) return std::make_unique<CFreeRecords>(source, result);
  return std::make_unique<CFixedRecords>(source, result);
}

// Copies cases until there are none, or as many as wanted.
class CCaseCopy {
 public:
  CCaseCopy(const TEXTSOURCE& source, int scratch, const TextProgress& progress)
      : source_(source),
        scratch_(scratch),
        progress_(progress),
        records_(Records(source, result_)),
        cells_(scratch, source.variables) {}

  TEXTRESULT Run() {
    while ((source_.records < 1 || result_.records < source_.records) && Step()) {
    }
    if (result_.Failed()) return std::move(result_);
    if (records_->Error() != 0 || !cells_.Flush()) {
      result_.error = records_->Error() != 0 ? records_->Error() : errno;
      return std::move(result_);
    }
    if (source_.records < 1) {
      if (inBlanks_) ForgetBlanks();
    } else if (result_.records == source_.records) {
      result_.more = records_->HasMore();
    }
    return std::move(result_);
  }

 private:
  // One case; false at the end and on failure.
  bool Step() {
    const auto variables = static_cast<std::size_t>(source_.variables);
    const std::int64_t blanksBefore = result_.blanks;
    double* const cells = cells_.Next();
    const std::size_t got = records_->Read(cells, variables);
    if (got == 0) return false;
    if (result_.records == std::numeric_limits<std::int32_t>::max()) {
      result_.problem = kTooMany;
      return false;
    }
    std::fill(cells + got, cells + variables, kMissingCode);
    ++result_.records;
    result_.absent = static_cast<std::int64_t>(variables - got);
    if (records_->WasBlank() && !inBlanks_) {
      recordsWithText_ = result_.records - 1;
      blanksWithText_ = blanksBefore;
    }
    inBlanks_ = records_->WasBlank();
    if (!cells_.Take()) return Stop(errno);
    if (cells_.IsEmpty() && !progress_(Share())) return Stop(ECANCELED);
    return got == variables;
  }

  // Blank lines at the end are no cases, those before other cases are.
  void ForgetBlanks() {
    result_.records = recordsWithText_;
    if (ftruncate(scratch_, CellBytes(recordsWithText_, source_.variables)) != 0) {
      result_.error = errno;
    }
    result_.blanks = blanksWithText_;
    result_.absent = 0;
  }

  bool Stop(int error) {
    result_.error = error;
    return false;
  }

  double Share() const {
    const auto bytes = static_cast<double>(std::max<std::int64_t>(source_.bytes, 1));
    return std::min(static_cast<double>(records_->Offset()) / bytes, 1.0);
  }

  const TEXTSOURCE& source_;
  int scratch_;
  const TextProgress& progress_;
  TEXTRESULT result_;
  std::unique_ptr<CRecordSource> records_;
  CCellBlocks cells_;
  bool inBlanks_ = false;             // the last records are blank lines
  std::int64_t recordsWithText_ = 0;  // before them
  std::int64_t blanksWithText_ = 0;
};

// The parts of a matrix file in the order in which they stand.
class CMatrixCopy {
 public:
  CMatrixCopy(const TEXTSOURCE& source, const EXTERNDATA& kind, int scratch,
              const TextProgress& progress)
      : kind_(kind),
        progress_(progress),
        records_(Records(source, result_)),
        cells_(scratch, source.variables),
        row_(static_cast<std::size_t>(source.variables)),
        most_(source.records < 1 ? std::numeric_limits<std::int32_t>::max() : source.records) {}

  TEXTRESULT Run() {
    for (const MatrixPart part : MatrixParts(kind_)) {
      if (parts_ >= most_ || !ReadPart(part)) break;
    }
    if (!result_.Failed()) WriteVectors();
    if (!result_.Failed() && result_.records == 0) {
      result_.problem = "No part of the matrix file has the position 1.";
    }
    if (!result_.Failed() && !cells_.Flush()) result_.error = errno;
    // Full rows read as a triangle, for one, leave numbers behind.
    if (!result_.Failed()) result_.more = records_->HasMore();
    return std::move(result_);
  }

 private:
  bool ReadPart(MatrixPart part) {
    if (part == MatrixPart::Matrix) return ReadMatrix();
    return ReadVector(part == MatrixPart::FirstVector ? first_ : second_);
  }

  bool ReadMatrix() {
    for (std::size_t row = 1; row <= row_.size() && parts_ < most_; ++row, ++parts_) {
      if (!ReadRow(row_, kind_.fullMatrix != 0 ? row_.size() : row)) return false;
      if (!Write(row_)) return false;
    }
    return true;
  }

  bool ReadVector(std::vector<double>& vector) {
    vector.resize(row_.size());
    if (!ReadRow(vector, vector.size())) return false;
    ++parts_;
    return true;
  }

  bool ReadRow(std::vector<double>& values, std::size_t count) {
    const std::size_t got = records_->Read(values.data(), count);
    if (got == count) return true;
    if (records_->Error() != 0) {
      result_.error = records_->Error();
    } else {
      result_.problem = boost::str(
          boost::format("The matrix file ends early: of row %1%, which has %2% value(s), %3% are "
                        "there.") %
          (parts_ + 1) % count % got);
    }
    return false;
  }

  void WriteVectors() {
    for (const std::vector<double>* vector : {&first_, &second_}) {
      if (!vector->empty() && !Write(*vector)) return;
    }
  }

  bool Write(const std::vector<double>& values) {
    std::copy(values.begin(), values.end(), cells_.Next());
    ++result_.records;
    if (!cells_.Take()) {
      result_.error = errno;
    } else if (cells_.IsEmpty() && !progress_(-1)) {
      result_.error = ECANCELED;
    }
    return !result_.Failed();
  }

  const EXTERNDATA& kind_;
  const TextProgress& progress_;
  TEXTRESULT result_;
  std::unique_ptr<CRecordSource> records_;
  CCellBlocks cells_;
  std::vector<double> row_;
  std::vector<double> first_;
  std::vector<double> second_;
  std::int32_t parts_ = 0;  // rows and vectors read
  std::int32_t most_;
};

void Describe(const TEXTFAULTS& faults, const char* pattern, const std::vector<CString>& names,
              CString& text) {
  if (faults.count == 0) return;
  const auto index = static_cast<std::size_t>(faults.variable);
  const CString name =
      index < names.size() ? TextForDisplay(names[index]) : std::to_string(index + 1);
  if (!text.empty()) text += '\n';
  text += boost::str(boost::format(pattern) % faults.count % faults.text % faults.record % name);
}

}  // namespace

TEXTRESULT ReadTextCases(const TEXTSOURCE& source, int scratch, const TextProgress& progress) {
  return CCaseCopy(source, scratch, progress).Run();
}

TEXTRESULT ReadTextMatrix(const TEXTSOURCE& source, const EXTERNDATA& kind, int scratch,
                          const TextProgress& progress) {
  return CMatrixCopy(source, kind, scratch, progress).Run();
}

CString DescribeFaults(const TEXTRESULT& result, const std::vector<CString>& variableNames) {
  CString text;
  Describe(result.unreadable,
           "%1% value(s) are no numbers and were read as 0; the first is \"%2%\" in record %3%, "
           "variable %4%.",
           variableNames, text);
  Describe(result.partial,
           "Of %1% value(s) only the number that they begin with was read; the first is \"%2%\" in "
           "record %3%, variable %4%.",
           variableNames, text);
  const auto add = [&text](std::int64_t count, const char* pattern) {
    if (count == 0) return;
    if (!text.empty()) text += '\n';
    text += boost::str(boost::format(pattern) % count);
  };
  add(result.blanks, "%1% field(s) are blank and were read as 0.");
  add(result.absent, "The file ends within a record; its last %1% value(s) are missing.");
  if (result.more) {
    text += CString(text.empty() ? "" : "\n") +
            "The file holds more than was asked for; the rest was not read.";
  }
  return text;
}
