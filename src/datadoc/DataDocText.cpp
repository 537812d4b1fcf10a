// The document's reading and writing of text data files.
#include <algorithm>
#include <cerrno>
#include <cstring>
#include <utility>

#include <boost/format.hpp>

#include "datadoc/DataDoc.h"
#include "datadoc/MatrixParts.h"
#include "datadoc/TextReader.h"
#include "datadoc/TextWriter.h"
#include "datadoc/VsfLayout.h"
#include "dataview/DataView.h"
#include "host/Host.h"
#include "host/Numbers.h"
#include "host/Text.h"
#include "vexutils/BlockIo.h"
#include "vexutils/SideFile.h"

namespace {

constexpr const char* kNoFile = "The file does not exist!";
constexpr const char* kCannotWrite = "Cannot write to file!";

TextProgress ReportTo(CProgress& progress) {
  return [&progress](double share) { return progress.Advance(share); };
}

// Empty, or why the fields do not do for so many variables.
CString WhyTooFewFields(std::size_t fields, std::int32_t variables) {
  if (fields >= static_cast<std::size_t>(variables)) return {};
  return boost::str(boost::format("The format statement gives %1% field(s), the data set has %2% "
                                  "variable(s).") %
                    fields % variables);
}

// Hands the rows of a file of cells on, in blocks.
class CRowSource {
 public:
  CRowSource(int file, std::int32_t variables)
      : file_(file), width_(static_cast<std::size_t>(variables)) {}

  // Row `row`, counted from 0; empty, with the reason in errno, when it cannot be read. Rows are
  // best asked for in their order. `last` is one behind the last row there is.
  std::span<const double> Row(std::int64_t row, std::int64_t last) {
    if (row < begin_ || row >= begin_ + Held()) {
      const std::int64_t atOnce =
          std::max<std::int64_t>(1, kBytes / CellBytes(1, static_cast<std::int64_t>(width_)));
      cells_.resize(static_cast<std::size_t>(std::min(atOnce, last - row)) * width_);
      begin_ = row;
      const std::size_t bytes = cells_.size() * kCellBytes;
      errno = EIO;  // the reason where the file is only too short
      if (ReadAt(file_, CellBytes(row, static_cast<std::int64_t>(width_)), cells_.data(), bytes) !=
          static_cast<std::int64_t>(bytes)) {
        return {};
      }
    }
    return {cells_.data() + static_cast<std::size_t>(row - begin_) * width_, width_};
  }

  // Is this the last row of a block?
  bool EndsBlock(std::int64_t row) const { return row + 1 == begin_ + Held(); }

 private:
  static constexpr std::int64_t kBytes = std::int64_t{128} << 10;
  std::int64_t Held() const { return static_cast<std::int64_t>(cells_.size() / width_); }

  int file_;
  std::size_t width_;
  std::vector<double> cells_;
  std::int64_t begin_ = 0;
};

// Writes a document's rows as the records of a text file.
class CTextSave {
 public:
  CTextSave(const TORVIKSTRUCT& data, const EXTERNDATA& kind, int scratch, CTextWriter& writer,
            CProgress& progress)
      : data_(data),
        kind_(kind),
        rows_(scratch, data.variables),
        writer_(writer),
        progress_(progress) {}

  // False with the reason in errno, or in `problem`.
  bool Cases(CString& problem) {
    for (std::int64_t row = 0; row < data_.records; ++row) {
      if (!Add(row, static_cast<std::size_t>(data_.variables), problem)) return false;
    }
    return true;
  }

  bool Matrix(CString& problem) {
    const auto parts = MatrixParts(kind_);
    const bool hasMatrix = std::count(parts.begin(), parts.end(), MatrixPart::Matrix) > 0;
    const bool hasFirst = std::count(parts.begin(), parts.end(), MatrixPart::FirstVector) > 0;
    const std::int64_t firstVector = hasMatrix ? data_.variables : 0;
    const auto all = static_cast<std::size_t>(data_.variables);
    for (const MatrixPart part : parts) {
      if (part == MatrixPart::Matrix) {
        for (std::int64_t row = 0; row < data_.variables; ++row) {
          const auto count = kind_.fullMatrix != 0 ? all : static_cast<std::size_t>(row) + 1;
          if (!Add(row, count, problem)) return false;
        }
      } else {
        const bool second = part == MatrixPart::SecondVector && hasFirst;
        if (!Add(firstVector + (second ? 1 : 0), all, problem)) return false;
      }
    }
    return true;
  }

 private:
  bool Add(std::int64_t row, std::size_t count, CString& problem) {
    const std::span<const double> values = rows_.Row(row, data_.records);
    if (values.empty()) return false;
    if (!writer_.AddRecord(values.first(count))) {
      if (writer_.BadValue() >= 0) {
        problem = Describe(row, values[static_cast<std::size_t>(writer_.BadValue())]);
      }
      return false;
    }
    if (!rows_.EndsBlock(row)) return true;
    if (progress_.Advance(static_cast<double>(row + 1) / static_cast<double>(data_.records))) {
      return true;
    }
    errno = ECANCELED;  // only now: what shows the progress may change it
    return false;
  }

  CString Describe(std::int64_t row, double value) const {
    const auto variable = static_cast<std::size_t>(writer_.BadValue());
    return boost::str(
        boost::format("The value %1% of case %2%, variable %3% %4%. Nothing was "
                      "saved.") %
        FormatShortest(value) % (row + 1) % TextForDisplay(data_.variable[variable].name) %
        (kind_.fixedFormat != 0 ? "does not fit into its field" : "cannot be written as a number"));
  }

  const TORVIKSTRUCT& data_;
  const EXTERNDATA& kind_;
  CRowSource rows_;
  CTextWriter& writer_;
  CProgress& progress_;
};

}  // namespace

int CDataDoc::OpenASCIIFile(const CString& fileName) {
  CDataView* const view = GetDataView();
  if (view == nullptr) return 0;
  if (textTop_.begin == 0) textTop_.names = false;
  std::int64_t begin = std::exchange(textTop_.begin, 0);
  CDescriptor file;
  if (!file.OpenForReading(fileName.c_str())) {
    AfxMessageBox(kNoFile);
    return 0;
  }
  const EXTERNDATA before = extern_;
  std::vector<RANGE_KTQ> fields;
  if (const CString problem = FindTextFields(file.Get(), begin, fields); !problem.empty()) {
    extern_ = before;
    AfxMessageBox(fileName + ": " + problem);
    return 0;
  }
  if (data_.variables < 1) {
    const auto count = static_cast<std::int32_t>(fields.size());
    SetExtern(EXTERNDATA(extern_), {}, data_.records, count, false);
  }
  return ReadTextFile(file.Get(), begin, std::move(fields), *view, fileName);
}

// The fields of a fixed format, one a variable, and where the numbers begin. Empty, or a problem.
CString CDataDoc::FindTextFields(int file, std::int64_t& begin, std::vector<RANGE_KTQ>& fields) {
  const TEXTLINE first = ReadTextLine(file, begin);
  begin = first.begin;
  textTop_.statement = BeginsFormat(first.text);
  if (textTop_.statement) {
    begin = first.next;
    if (extern_.fixedFormat == 0) {
      if (CString problem = TakeFormatStatement(first.text); !problem.empty()) return problem;
    }
  }
  if (extern_.fixedFormat == 0) {
    return data_.variables < 1 ? "The number of variables is not known." : CString();
  }
  const bool known = data_.variables > 0;
  FORMATFIELDS format =
      ParseFormat(extern_.formatStatement,
                  static_cast<std::size_t>(known ? data_.variables : kMostTextVariables));
  if (!format.problem.empty()) return format.problem;
  fields = std::move(format.fields);
  return WhyTooFewFields(fields.size(), std::max(data_.variables, 1));
}

CString CDataDoc::TakeFormatStatement(std::string_view line) {
  line = Trimmed(line);
  const std::size_t end = line.find(')');
  if (end != std::string_view::npos) line = line.substr(0, end + 1);
  if (line.size() > EXTERNDATA::kFormatStatementBytes) {
    return boost::str(boost::format("The format statement has more than %1% characters.") %
                      EXTERNDATA::kFormatStatementBytes);
  }
  extern_.formatStatement = line;
  extern_.fixedFormat = 1;
  return {};
}

int CDataDoc::ReadTextFile(int file, std::int64_t begin, std::vector<RANGE_KTQ> fields,
                           CDataView& view, const CString& fileName) {
  SizeRecordBuffer();
  TEXTSOURCE source;
  source.file = file;
  source.begin = begin;
  source.bytes = FileBytes(file);
  source.variables = data_.variables;
  source.records = data_.records;
  source.fields = std::move(fields);
  TEXTRESULT result;
  std::FILE* const scratch = view.OpenScratchFile("w+b");
  if (scratch == nullptr) {
    result.error = errno;
  } else {
    const auto progress = Host().StartProgress("Opening " + fileName);
    result = extern_.ma_type < 1
                 ? ReadTextCases(source, fileno(scratch), ReportTo(*progress))
                 : ReadTextMatrix(source, extern_, fileno(scratch), ReportTo(*progress));
  }
  if (result.Failed()) {
    if (result.error != ECANCELED) {
      AfxMessageBox(fileName + ": " +
                    (result.problem.empty() ? std::strerror(result.error) : result.problem));
    }
    ResetDescription();
    return 0;
  }
  CString note = DescribeFaults(result, VariableNames());
  if (result.records < data_.records) {
    if (!note.empty()) note += '\n';
    note += boost::str(boost::format("%1% of %2% record(s) are there.") % result.records %
                       data_.records);
  }
  data_.records = static_cast<std::int32_t>(result.records);
  if (!note.empty()) Host().ShowNote(fileName + ":\n" + note);
  return 1;
}

std::vector<CString> CDataDoc::VariableNames() const {
  std::vector<CString> names;
  for (std::size_t i = 0; i < static_cast<std::size_t>(data_.variables); ++i) {
    names.push_back(data_.variable[i].name);
  }
  return names;
}

int CDataDoc::OpenFreeFormatFile(const CString& fileName, const ASC2VSF& choice,
                                 const EXTERNDATA& kind) {
  std::vector<LABSTRUCT> labels;
  TEXTFILETOP top;
  top.names = choice.namesOnTop && kind.ma_type < 1;
  CDescriptor file;
  if (top.names && file.OpenForReading(fileName.c_str())) {
    const TEXTLINE line = ReadTextLine(file.Get(), 0);
    top.begin = line.next;
    for (CString& name : WordsOf(line.text)) {
      labels.push_back({TextForFile(TextForDisplay(name)), {}});
    }
  }
  EXTERNDATA text = kind;
  text.data_type = kTextFile;
  SetExtern(text, labels, 0, std::clamp(choice.variables, 1, kMostTextVariables), false);
  textTop_ = top;
  if (OnOpenDocument(fileName)) return 1;
  ResetDescription();
  return 0;
}

int CDataDoc::SaveASCIIFile(const CString& fileName) {
  CDataView* const view = GetDataView();
  if (view == nullptr) return 0;
  std::FILE* const scratch = view->OpenScratchFile("rb");
  CSideFile target;
  CString problem;
  const bool written = scratch != nullptr && target.Create(fileName) &&
                       WriteTextFile(fileno(scratch), target, fileName, problem);
  const int error = target.Error() != 0 ? target.Error() : errno;
  view->ReopenFile();
  if (written) return 1;
  if (!problem.empty()) {
    AfxMessageBox(problem);
    return 0;
  }
  WriteStatusInfo(error == ECANCELED ? fileName + " was not saved."
                                     : fileName + ": " + std::strerror(error));
  if (error != ECANCELED) AfxMessageBox(kCannotWrite);
  return 0;
}

// Writes the whole file and puts it in its place. False with the reason in errno, in the side file
// or in `problem`.
bool CDataDoc::WriteTextFile(int scratch, CSideFile& target, const CString& fileName,
                             CString& problem) const {
  const bool matrix = extern_.ma_type >= 1;
  FORMATFIELDS format;
  if (extern_.fixedFormat != 0) {
    format = ParseFormat(extern_.formatStatement, static_cast<std::size_t>(data_.variables));
    problem = format.problem.empty() ? WhyTooFewFields(format.fields.size(), data_.variables)
                                     : format.problem;
  }
  if (matrix && MatrixRecords(extern_, data_.variables) != data_.records) {
    problem = "The rows of the data set are not those of the parts of its matrix file.";
  }
  if (!problem.empty()) return false;
  CTextWriter writer(target.Descriptor(), std::move(format.fields));
  if (extern_.fixedFormat != 0 && textTop_.statement && BeginsFormat(extern_.formatStatement) &&
      !writer.AddLine(extern_.formatStatement)) {
    return false;
  }
  if (extern_.fixedFormat == 0 && !matrix && textTop_.names &&
      !writer.AddLine(NamesLine(VariableNames()))) {
    return false;
  }
  auto progress = Host().StartProgress("Saving " + fileName);
  CTextSave save(data_, extern_, scratch, writer, *progress);
  const bool written =
      (matrix ? save.Matrix(problem) : save.Cases(problem)) && writer.Flush() && target.Commit();
  const int error = errno;
  progress.reset();  // may change errno
  errno = error;
  return written;
}
