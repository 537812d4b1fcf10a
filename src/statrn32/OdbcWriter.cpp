#include <algorithm>
#include <cmath>

#include "host/statrn32.h"
#include "statrn32/FileWriter.h"
#include "statrn32/OdbcConnection.h"
#include "statrn32/OdbcFiles.h"

namespace statrn32 {
namespace {

bool Succeeded(SQLRETURN result) {
  return result == SQL_SUCCESS || result == SQL_SUCCESS_WITH_INFO;
}

class COdbcWriter final : public CFileWriter {
 public:
  explicit COdbcWriter(std::int32_t code) : CFileWriter(code) {}

 protected:
  bool Create() override;
  bool PutHeader() override;
  bool PutRecord(const std::vector<OUT_CELL>& cells) override;
  bool PutEnd() override { return connection_.Commit() || FailDriver(); }
  bool Close() override {
    connection_.Close();
    return true;
  }

 private:
  // Where the driver finds a value while a row is written.
  struct PARAMETER {
    double number = 0;
    std::vector<SQLWCHAR> text;
    SQLLEN length = 0;
  };
  bool FailDriver() { return FailFile(connection_.Error()); }
  bool MakeTable();
  bool Bind(SQLUSMALLINT number, const VARIABLE& variable, PARAMETER* parameter);

  COdbcConnection connection_;
  std::string table_;
  std::vector<PARAMETER> parameters_;
};

bool COdbcWriter::Create() {
  if (!connection_.Open(Name(), Dictionary().password)) return FailDriver();
  std::string name = connection_.TableName();
  if (name.empty()) name = Dictionary().tableName;
  if (name.empty()) return FailFile("the connection file names no table: [TABLE] NAME=...");
  AppendSqlPath(connection_.Dialect(), name, &table_);
  return true;
}

// A table that is there keeps its rows; one that is not is made.
bool COdbcWriter::PutHeader() {
  if (!connection_.BeginTransaction()) return FailDriver();
  if (!connection_.Execute("SELECT * FROM " + table_ + " WHERE 1=0") && !MakeTable()) return false;
  std::string names;
  std::string places;
  for (const VARIABLE& variable : Variables()) {
    if (!names.empty()) names += ", ";
    AppendSqlName(connection_.Dialect(), variable.name, &names);
    places += places.empty() ? "?" : ",?";
  }
  if (!connection_.Prepare("INSERT INTO " + table_ + " (" + names + ") VALUES (" + places + ")")) {
    return FailDriver();
  }
  parameters_.resize(Variables().size());
  for (PARAMETER& parameter : parameters_) parameter.text.resize(1);
  return true;
}

bool COdbcWriter::MakeTable() {
  std::string sql = "CREATE TABLE " + table_ + " (";
  for (std::size_t i = 0; i < Variables().size(); ++i) {
    if (i > 0) sql += ", ";
    AppendSqlName(connection_.Dialect(), Variables()[i].name, &sql);
    sql += " " + SqlTypeOf(connection_.Dialect(), Variables()[i]);
  }
  return connection_.Execute(sql + ")") || FailDriver();
}

bool COdbcWriter::Bind(SQLUSMALLINT number, const VARIABLE& variable, PARAMETER* parameter) {
  const bool text = variable.type == ST_TYPE_STRING;
  const auto width = static_cast<SQLULEN>(text ? std::max(1, variable.width) : 15);
  SQLPOINTER const value =
      text ? static_cast<SQLPOINTER>(parameter->text.data()) : &parameter->number;
  const auto room = static_cast<SQLLEN>(text ? parameter->text.size() * sizeof(SQLWCHAR) : 0);
  return Succeeded(connection_.Library().bindParameter(
             connection_.Statement(), number, SQL_PARAM_INPUT, text ? SQL_C_WCHAR : SQL_C_DOUBLE,
             text ? SQL_WVARCHAR : SQL_DOUBLE, width, 0, value, room, &parameter->length)) ||
         connection_.FailStatement() || FailDriver();
}

bool COdbcWriter::PutRecord(const std::vector<OUT_CELL>& cells) {
  for (std::size_t i = 0; i < cells.size(); ++i) {
    const OUT_CELL& cell = cells[i];
    const VARIABLE& variable = Variables()[i];
    PARAMETER& parameter = parameters_[i];
    const bool text = variable.type == ST_TYPE_STRING;
    if (cell.missing || (!text && std::isnan(cell.number))) {
      parameter.length = SQL_NULL_DATA;
    } else if (text) {
      parameter.text = WideOf(cell.text);
      parameter.length = SQL_NTS;
    } else {
      parameter.number = cell.number;
      parameter.length = 0;
    }
    if (!Bind(static_cast<SQLUSMALLINT>(i + 1), variable, &parameter)) return false;
  }
  return Succeeded(connection_.Library().execute(connection_.Statement())) ||
         connection_.FailStatement() || FailDriver();
}

}  // namespace

std::unique_ptr<CWriter> WriteOdbcTable(std::int32_t code) {
  return std::make_unique<COdbcWriter>(code);
}

}  // namespace statrn32
