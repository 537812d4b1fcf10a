#include <cmath>

#include "host/Numbers.h"
#include "host/statrn32.h"
#include "statrn32/FileWriter.h"
#include "statrn32/Formats.h"
#include "statrn32/SqlDialect.h"
#include "statrn32/SqlFiles.h"

namespace statrn32 {
namespace {

class CSqlWriter final : public CFileWriter {
 public:
  explicit CSqlWriter(std::int32_t code) : CFileWriter(code), dialect_(*FindSqlDialect(code)) {}

 protected:
  bool PutHeader() override;
  bool PutRecord(const std::vector<OUT_CELL>& cells) override;
  bool PutEnd() override { return rows_ == 0 || Put(dialect_.endRow); }

 private:
  void AppendCell(const OUT_CELL& cell, const VARIABLE& variable);

  const SQL_DIALECT& dialect_;
  std::string table_;
  std::string line_;
  int rows_ = 0;  // of the statement being written
};

bool CSqlWriter::PutHeader() {
  constexpr const char* kDefaultTable = "data";
  const std::string& wanted = Dictionary().tableName;
  std::vector<std::string> name = {wanted.empty() ? kDefaultTable : wanted};
  MakeLegalNames(*dialect_.names, &name);
  AppendSqlName(dialect_, name[0], &table_);
  line_ = "CREATE TABLE " + table_ + " (";
  for (std::size_t i = 0; i < Variables().size(); ++i) {
    line_ += i == 0 ? "\n  " : ",\n  ";
    AppendSqlName(dialect_, Variables()[i].name, &line_);
    line_ += " " + SqlTypeOf(dialect_, Variables()[i]);
  }
  return Put(line_ + "\n)" + dialect_.endRow);
}

bool CSqlWriter::PutRecord(const std::vector<OUT_CELL>& cells) {
  line_.clear();
  if (rows_ == dialect_.rowsAtOnce) {
    line_ = dialect_.endRow;
    rows_ = 0;
  }
  line_ += rows_ == 0 ? "INSERT INTO " + table_ + " VALUES\n(" : ",\n(";
  for (std::size_t i = 0; i < cells.size(); ++i) {
    if (i > 0) line_ += ',';
    AppendCell(cells[i], Variables()[i]);
  }
  line_ += ')';
  ++rows_;
  return Put(line_);
}

void CSqlWriter::AppendCell(const OUT_CELL& cell, const VARIABLE& variable) {
  const bool text = variable.type == ST_TYPE_STRING;
  if (cell.missing || (!text && std::isnan(cell.number))) {
    line_ += "NULL";
  } else if (text) {
    AppendSqlText(dialect_, cell.text, &line_);
  } else {
    const std::string number = FormatShortest(cell.number);
    line_ += number;
    if (number.find('e') != std::string::npos) line_ += dialect_.longNumber;
  }
}

}  // namespace

std::unique_ptr<CWriter> WriteSqlScript(std::int32_t code) {
  return std::make_unique<CSqlWriter>(code);
}

}  // namespace statrn32
