// MAT-files as matio reads them. Vectors of one length make a table, a variable each; a matrix
// makes a table with the variables V1, V2, ...; a structure makes a table of its fields.
#include <algorithm>
#include <cmath>
#include <matio.h>

#include <boost/algorithm/string/join.hpp>

#include "host/Numbers.h"
#include "host/statrn32.h"
#include "statrn32/ByteReader.h"
#include "statrn32/ChildReader.h"
#include "statrn32/FileReader.h"
#include "statrn32/MatlabFiles.h"
#include "statrn32/MatlabValues.h"

namespace statrn32 {
namespace {

struct FREE_VARIABLE {
  void operator()(matvar_t* variable) const { Mat_VarFree(variable); }
};
using MATLAB_VARIABLE = std::unique_ptr<matvar_t, FREE_VARIABLE>;
struct CLOSE_FILE {
  void operator()(mat_t* file) const { Mat_Close(file); }
};

// What becomes one variable of the table.
struct COLUMN {
  std::string name;
  const matvar_t* source = nullptr;
  std::size_t first = 0;      // element of the source
  std::vector<double> dense;  // the column of a sparse matrix
  bool text = false;
};

std::string TextIn(const COLUMN& column, std::size_t row) {
  if (column.source->class_type == MAT_C_CHAR) return RowOfCharacters(*column.source, row);
  const matvar_t* const cell =
      static_cast<matvar_t* const*>(column.source->data)[column.first + row];
  if (cell == nullptr) return {};
  if (cell->class_type == MAT_C_CHAR) return RowOfCharacters(*cell, 0);
  const bool number = IsNumeric(*cell) && cell->class_type != MAT_C_SPARSE &&
                      Elements(*cell) == 1 && DataOf(*cell) != nullptr;
  return number ? FormatShortest(NumberAt(cell->data_type, DataOf(*cell), 0)) : std::string();
}

// One table of the file.
struct TABLE {
  std::vector<std::string> variables;
  std::size_t rows = 0;
  bool vectors = false;
  bool numeric = false;  // holds numbers

  std::string Name() const {
    if (variables.size() == 1) return variables[0];
    return variables[0] + " and " + std::to_string(variables.size() - 1) + " more";
  }
};

class CMatlabReader final : public CFileReader {
 public:
  CMatlabReader() : CFileReader(29) {}

  std::vector<std::string> Tables() const override;
  std::vector<std::string> Notes() const override;

 protected:
  bool LookInside() override;
  bool ReadHeader(DICTIONARY* out) override;
  void FillBlock(CBlockFiller* out) override;

 private:
  void List(const matvar_t& variable);
  const TABLE* Choose();
  bool AddFields(matvar_t* structure);
  bool AddColumns(const std::string& name, const matvar_t& variable);
  bool AddSparse(const std::string& name, const matvar_t& variable);
  std::size_t MostRows(const matvar_t& variable);
  VARIABLE VariableOf(const COLUMN& column) const;
  void PutValue(const COLUMN& column, std::size_t row, CBlockFiller* out) const;

  std::unique_ptr<mat_t, CLOSE_FILE> file_;
  std::vector<TABLE> tables_;
  std::vector<std::string> leftOut_;
  std::vector<MATLAB_VARIABLE> loaded_;
  std::vector<COLUMN> columns_;
  std::size_t rows_ = 0;
  std::size_t next_ = 0;
  std::string chosen_;
  bool complex_ = false;
};

// The library tells what it finds wrong: here nobody would read it.
void Ignore(int /*level*/, char* /*message*/) {}

bool CMatlabReader::LookInside() {
  Mat_LogInitFunc("", Ignore);
  file_.reset(Mat_Open(Name().c_str(), MAT_ACC_RDONLY));
  if (!file_) return FailFile("the file is damaged, or a Matlab file of an unknown kind");
  while (const MATLAB_VARIABLE variable{Mat_VarReadNextInfo(file_.get())}) List(*variable);
  if (!tables_.empty()) return true;
  if (leftOut_.empty()) return FailFile("there is no variable in it, or the file is damaged");
  return FailFile("there are no numbers or texts in it, only objects (" +
                  boost::algorithm::join(leftOut_, ", ") +
                  "); please save their columns as matrices");
}

void CMatlabReader::List(const matvar_t& variable) {
  const std::string name = variable.name != nullptr ? variable.name : "";
  if (name.empty()) return;
  const bool fields = variable.class_type == MAT_C_STRUCT && Elements(variable) == 1;
  const bool textual = variable.class_type == MAT_C_CHAR || variable.class_type == MAT_C_CELL;
  if (!fields && !textual && !IsNumeric(variable)) {
    leftOut_.push_back(name);
    return;
  }
  const bool vector = !fields && IsVector(variable);
  const std::size_t rows = RowsOf(variable);
  for (TABLE& table : tables_) {
    if (!vector || !table.vectors || table.rows != rows) continue;
    table.variables.push_back(name);
    table.numeric = table.numeric || !textual;
    return;
  }
  tables_.push_back({{name}, rows, vector, !textual});
}

std::vector<std::string> CMatlabReader::Tables() const {
  std::vector<std::string> names;
  for (const TABLE& table : tables_) names.push_back(table.Name());
  return names;
}

// By the table's name or by that of a variable in it; unasked, the first one with numbers.
const TABLE* CMatlabReader::Choose() {
  const std::string& wanted = Options().table;
  for (const TABLE& table : tables_) {
    if (wanted.empty() ? table.numeric : wanted == table.Name()) return &table;
  }
  if (wanted.empty()) return &tables_[0];
  for (const TABLE& table : tables_) {
    for (const std::string& name : table.variables) {
      if (wanted == name) return &table;
    }
  }
  FailFile("there is no variable \"" + wanted +
           "\"; there are: " + boost::algorithm::join(Tables(), ", "));
  return nullptr;
}

bool CMatlabReader::ReadHeader(DICTIONARY* out) {
  const TABLE* const table = Choose();
  if (table == nullptr) return false;
  chosen_ = table->Name();
  rows_ = table->rows;
  for (const std::string& name : table->variables) {
    MATLAB_VARIABLE variable(Mat_VarRead(file_.get(), name.c_str()));
    if (!variable) return FailFile("the variable " + name + " is damaged");
    const bool fields = variable->class_type == MAT_C_STRUCT;
    if (!(fields ? AddFields(variable.get()) : AddColumns(name, *variable))) return false;
    loaded_.push_back(std::move(variable));
  }
  if (columns_.empty()) return FailFile("the variable " + chosen_ + " holds no columns");
  for (const COLUMN& column : columns_) out->variables.push_back(VariableOf(column));
  out->cases = static_cast<std::int64_t>(rows_);
  return true;
}

// The fields as long as the first one; the others are told.
bool CMatlabReader::AddFields(matvar_t* structure) {
  char* const* const names = Mat_VarGetStructFieldnames(structure);
  const unsigned count = Mat_VarGetNumberOfFields(structure);
  for (unsigned i = 0; i < count && names != nullptr; ++i) {
    const matvar_t* const field = Mat_VarGetStructFieldByIndex(structure, i, 0);
    const bool usable =
        field != nullptr && RowsOf(*field) > 0 &&
        (IsNumeric(*field) || field->class_type == MAT_C_CHAR || field->class_type == MAT_C_CELL);
    if (usable && columns_.empty()) rows_ = RowsOf(*field);
    if (!usable || RowsOf(*field) != rows_) {
      leftOut_.emplace_back(names[i]);
    } else if (!AddColumns(names[i], *field)) {
      return false;
    }
  }
  return true;
}

bool CMatlabReader::AddColumns(const std::string& name, const matvar_t& variable) {
  if (RowsOf(variable) != rows_ || rows_ > MostRows(variable)) {
    return FailFile("the variable " + name + " is damaged");
  }
  if (variable.class_type == MAT_C_SPARSE) return AddSparse(name, variable);
  const bool numeric = IsNumeric(variable);
  const bool cells = variable.class_type == MAT_C_CELL;
  const auto size = cells ? sizeof(matvar_t*) : static_cast<std::size_t>(variable.data_size);
  const std::size_t count = IsVector(variable) || rows_ == 0 ? 1 : Elements(variable) / rows_;
  complex_ = complex_ || variable.isComplex != 0;
  // Characters in UTF-8 may be more bytes than characters, or fewer in all rows but one.
  const bool whole = rows_ == 0 || variable.data_type == MAT_T_UTF8 || IsWhole(variable, size);
  if (!whole || (numeric && rows_ > 0 && DataOf(variable) == nullptr)) {
    return FailFile("the variable " + name + " is damaged");
  }
  for (std::size_t i = 0; i < count; ++i) {
    COLUMN& column = columns_.emplace_back();
    column.name = count == 1 ? name : "V" + std::to_string(columns_.size());
    column.source = &variable;
    column.first = i * rows_;
    column.text = !numeric;
  }
  return true;
}

// No more than there are bytes; packed ones become at most a thousand times as many.
std::size_t CMatlabReader::MostRows(const matvar_t& variable) {
  constexpr std::size_t kPacked = 1032;
  const bool packed = variable.compression != MAT_COMPRESSION_NONE ||
                      variable.class_type == MAT_C_SPARSE ||
                      Mat_GetVersion(file_.get()) == MAT_FT_MAT73;
  return static_cast<std::size_t>(Input().Size()) * (packed ? kPacked : 1);
}

bool CMatlabReader::AddSparse(const std::string& name, const matvar_t& variable) {
  constexpr std::size_t kMostValues = std::size_t{1} << 26;
  const auto* const sparse = static_cast<const mat_sparse_t*>(variable.data);
  if (sparse == nullptr || variable.rank != 2 || variable.isComplex != 0 ||
      Elements(variable) > kMostValues) {
    return FailFile("the sparse matrix " + name + " is damaged, complex or too large");
  }
  for (std::size_t i = 0; i < variable.dims[1]; ++i) {
    COLUMN& column = columns_.emplace_back();
    column.name = variable.dims[1] == 1 ? name : "V" + std::to_string(columns_.size());
    column.source = &variable;
    column.dense.resize(rows_);
    if (!MakeDense(*sparse, i, &column.dense, variable.data_type)) {
      return FailFile("the sparse matrix " + name + " is damaged");
    }
  }
  return true;
}

VARIABLE CMatlabReader::VariableOf(const COLUMN& column) const {
  constexpr int kWidth = 12;
  VARIABLE variable;
  variable.name = column.name;
  variable.type = column.text ? ST_TYPE_STRING : ST_TYPE_NUMERIC;
  const matio_classes kind = column.source->class_type;
  const bool whole = kind >= MAT_C_INT8 && kind <= MAT_C_UINT64;
  variable.width = kWidth;
  variable.decimals = whole || column.text ? 0 : 4;
  if (!column.text) return variable;
  std::size_t bytes = 1;
  for (std::size_t row = 0; row < rows_; ++row) bytes = std::max(bytes, TextIn(column, row).size());
  variable.width = static_cast<int>(bytes);
  return variable;
}

void CMatlabReader::FillBlock(CBlockFiller* out) {
  for (; next_ < rows_ && !out->Full(); ++next_) {
    for (const COLUMN& column : columns_) PutValue(column, next_, out);
    out->EndRecord();
  }
}

void CMatlabReader::PutValue(const COLUMN& column, std::size_t row, CBlockFiller* out) const {
  if (column.text) return out->Text(TextIn(column, row));
  const double number = column.dense.empty() ? NumberAt(column.source->data_type,
                                                        DataOf(*column.source), column.first + row)
                                             : column.dense[row];
  if (std::isfinite(number)) return out->Number(number);
  out->MissingNumber(ST_STATUS_MISSING);
}

std::vector<std::string> CMatlabReader::Notes() const {
  std::vector<std::string> notes;
  if (tables_.size() > 1) {
    notes.push_back("The file holds several tables: " + boost::algorithm::join(Tables(), ", ") +
                    ". Read was " + chosen_ + ".");
  }
  if (!leftOut_.empty()) {
    notes.push_back(
        "Objects and other lengths were left out: " + boost::algorithm::join(leftOut_, ", ") + ".");
  }
  if (complex_) notes.emplace_back("Of complex numbers only the real parts were read.");
  return notes;
}

// A file of level 4 begins with five integers: the kind of the first variable, its dimensions,
// whether it is complex, the length of its name.
bool IsMatlab4(std::string_view first) {
  constexpr std::uint32_t kMostName = 64;
  CByteReader in(first);
  std::uint32_t kind = in.U32();
  if (kind > 0xFFFF) {
    in.SetBigEndian(true);
    in.Seek(0);
    kind = in.U32();
    if (kind < 1000) return false;
    kind -= 1000;
  }
  in.Skip(8);
  const std::uint32_t complex = in.U32();
  const std::uint32_t bytes = in.U32();
  const bool type = kind / 10 <= 5 && kind % 10 <= 2;
  if (!in.Ok() || !type || complex > 1 || bytes < 2 || bytes > kMostName) return false;
  const std::string_view name = in.Bytes(bytes);
  if (name.empty() || name.back() != '\0') return false;
  return std::all_of(name.begin(), name.end() - 1, [](char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_';
  });
}

}  // namespace

bool IsMatlab(std::string_view first) {
  const std::string_view magic = first.substr(0, 10);
  return magic == "MATLAB 5.0" || magic == "MATLAB 7.3" || IsMatlab4(first);
}

std::unique_ptr<CReader> ReadMatlab() {
  return std::make_unique<CChildReader>([] { return std::make_unique<CMatlabReader>(); });
}

}  // namespace statrn32
