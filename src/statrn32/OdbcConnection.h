// A connection file and the database that it leads to.
//
// An INI file whose first section is [ODBC]: the keys are those of a file data source (DRIVER,
// SERVER, DATABASE, UID, ...) and go to the driver as they stand. The section [TABLE] holds NAME,
// the table to be read or written. Passwords do not belong there: they are asked for.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "statrn32/OdbcLibrary.h"
#include "statrn32/SqlDialect.h"

namespace statrn32 {

// Handles of the driver manager, given back at the end.
class COdbcHandle {
 public:
  COdbcHandle() = default;
  ~COdbcHandle() { Free(); }
  COdbcHandle(const COdbcHandle&) = delete;
  COdbcHandle& operator=(const COdbcHandle&) = delete;

  bool Allocate(const ODBC_LIBRARY* library, SQLSMALLINT kind, SQLHANDLE parent);
  void Free();
  SQLHANDLE Get() const { return handle_; }

 private:
  const ODBC_LIBRARY* library_ = nullptr;
  SQLSMALLINT kind_ = 0;
  SQLHANDLE handle_ = SQL_NULL_HANDLE;
};

// Used from one thread. A failure is told by Error(), without the file's name.
class COdbcConnection {
 public:
  COdbcConnection() = default;
  ~COdbcConnection() { Close(); }
  COdbcConnection(const COdbcConnection&) = delete;
  COdbcConnection& operator=(const COdbcConnection&) = delete;

  // Reads the file and connects. Where `password` is empty that of the variable VEXDATA_PASSWORD of
  // the environment is taken.
  bool Open(const std::string& file, const std::string& password);
  // What is not committed is taken back.
  void Close();
  const std::string& TableName() const { return table_; }  // of the file; may be empty
  bool ListTables(std::vector<std::string>* names);

  // How the database that answers writes SQL, whatever the file's extension says.
  const SQL_DIALECT& Dialect() const { return dialect_; }

  // Statements: UTF-8. One at a time.
  bool Execute(const std::string& sql);
  bool Prepare(const std::string& sql);
  // Changes are kept only when they are committed from now on.
  bool BeginTransaction();
  bool Commit();

  const ODBC_LIBRARY& Library() const { return *library_; }
  SQLHANDLE Statement() const { return statement_.Get(); }
  // Stores what the driver says about the last call of a statement, and gives false.
  bool FailStatement();

  const std::string& Error() const { return error_; }
  // Did the database ask for a name or a password?
  bool WasRefused() const { return refused_; }

 private:
  bool ReadFile(const std::string& file, std::string* connection);
  void AddKey(std::string_view key, const std::string& value, std::string* connection);
  void AddHabits(std::string* connection);
  std::string Info(SQLUSMALLINT which) const;
  void FindDialect();
  bool ListTables(std::string database, std::vector<std::string>* names);
  bool NewStatement();
  bool FailHandle(SQLSMALLINT kind, SQLHANDLE handle);
  bool Fail(std::string error) {
    error_ = std::move(error);
    return false;
  }

  const ODBC_LIBRARY* library_ = nullptr;
  COdbcHandle environment_;
  COdbcHandle connection_;
  COdbcHandle statement_;
  bool connected_ = false;
  bool transaction_ = false;
  bool refused_ = false;
  std::string table_;
  std::string driver_;
  std::vector<std::string> keys_;  // that the file has
  SQL_DIALECT dialect_{};
  std::string error_;
};

// UTF-16 in the driver manager's units, closed by a zero.
std::vector<SQLWCHAR> WideOf(std::string_view utf8);

}  // namespace statrn32
