#include "statrn32/OdbcConnection.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <limits>

#include "host/Text.h"
#include "statrn32/InputFile.h"
#include "statrn32/LineReader.h"
#include "statrn32/Utf16.h"

namespace statrn32 {
namespace {

bool Succeeded(SQLRETURN result) {
  return result == SQL_SUCCESS || result == SQL_SUCCESS_WITH_INFO;
}

// A value of a connection text; one with special characters stands in braces.
std::string Braced(std::string_view value) {
  std::string text = "{";
  for (const char c : value) text.append(c == '}' ? 2 : 1, c);
  return text + "}";
}

// What is asked of drivers where the file does not say otherwise: rows as they are needed, not the
// whole table in memory, and truth values as numbers.
constexpr struct {
  const char* driver;  // a part of its name
  const char* key;
  const char* value;
} kHabits[] = {{"PostgreSQL", "UseDeclareFetch", "1"},
               {"PostgreSQL", "Fetch", "1000"},
               {"PostgreSQL", "BoolsAsChar", "0"}};

}  // namespace

std::vector<SQLWCHAR> WideOf(std::string_view utf8) {
  const std::string bytes = Utf16Of(utf8);
  std::vector<SQLWCHAR> units(bytes.size() / 2 + 1);
  for (std::size_t i = 0; i + 1 < units.size(); ++i) {
    units[i] = static_cast<SQLWCHAR>(static_cast<unsigned char>(bytes[2 * i]) |
                                     static_cast<unsigned char>(bytes[2 * i + 1]) << 8);
  }
  return units;
}

bool COdbcHandle::Allocate(const ODBC_LIBRARY* library, SQLSMALLINT kind, SQLHANDLE parent) {
  Free();
  library_ = library;
  kind_ = kind;
  return Succeeded(library->allocHandle(kind, parent, &handle_));
}

void COdbcHandle::Free() {
  if (handle_ != SQL_NULL_HANDLE) library_->freeHandle(kind_, handle_);
  handle_ = SQL_NULL_HANDLE;
}

// The driver is a name that the driver manager knows: a file may not name a library of its own, nor
// make a driver load one.
bool COdbcConnection::ReadFile(const std::string& file, std::string* connection) {
  CInputFile input;
  if (!input.Open(file)) return Fail(std::strerror(errno));
  CLineReader lines(&input, 4096);
  std::string section;
  for (std::string line; lines.Next(&line);) {
    const std::string text(Trimmed(line));
    if (text.empty() || text[0] == ';' || text[0] == '#') continue;
    if (const std::size_t open = text.find('['); open != std::string::npos && text.back() == ']') {
      section = text.substr(open + 1, text.size() - open - 2);
      continue;
    }
    const std::size_t equals = std::min(text.find('='), text.size());
    const std::string key(Trimmed(text.substr(0, equals)));
    const std::string value(Trimmed(text.substr(std::min(equals + 1, text.size()))));
    if (EqualIgnoringCase(section, "TABLE")) {
      if (EqualIgnoringCase(key, "NAME")) table_ = value;
      continue;
    }
    if (!EqualIgnoringCase(section, "ODBC")) continue;
    const bool library = EqualIgnoringCase(key, "LOADEXT") || EqualIgnoringCase(key, "SETUP") ||
                         (EqualIgnoringCase(key, "DRIVER") && value.find('/') != value.npos);
    if (library) {
      return Fail("line " + std::to_string(lines.Number()) + ": " + key +
                  " would load a library; please name an installed ODBC driver");
    }
    AddKey(key, value, connection);
  }
  if (!connection->empty()) AddHabits(connection);
  return !connection->empty() || Fail("there are no keys in its section [ODBC]");
}

void COdbcConnection::AddKey(std::string_view key, const std::string& value,
                             std::string* connection) {
  const bool driver = EqualIgnoringCase(key, "DRIVER");
  if (driver) driver_ = value;
  keys_.emplace_back(key);
  connection->append(key).append("=").append(driver ? Braced(value) : value).append(";");
}

void COdbcConnection::AddHabits(std::string* connection) {
  for (const auto& habit : kHabits) {
    const bool there = std::any_of(keys_.begin(), keys_.end(), [&](const std::string& key) {
      return EqualIgnoringCase(key, habit.key);
    });
    if (there || driver_.find(habit.driver) == std::string::npos) continue;
    AddKey(habit.key, habit.value, connection);
  }
}

bool COdbcConnection::Open(const std::string& file, const std::string& password) {
  constexpr std::size_t kSeconds = 15;
  std::string connection;
  if (!ReadFile(file, &connection)) return false;
  library_ = LoadOdbc(&error_);
  if (library_ == nullptr) return false;
  const auto version = reinterpret_cast<SQLPOINTER>(std::size_t{SQL_OV_ODBC3});
  if (!environment_.Allocate(library_, SQL_HANDLE_ENV, SQL_NULL_HANDLE) ||
      !Succeeded(library_->setEnvAttr(environment_.Get(), SQL_ATTR_ODBC_VERSION, version, 0)) ||
      !connection_.Allocate(library_, SQL_HANDLE_DBC, environment_.Get())) {
    return Fail("the ODBC driver manager does not start");
  }
  library_->setConnectAttr(connection_.Get(), SQL_ATTR_LOGIN_TIMEOUT,
                           reinterpret_cast<SQLPOINTER>(kSeconds), 0);
  const char* const known = std::getenv("VEXDATA_PASSWORD");
  const std::string secret = !password.empty() || known == nullptr ? password : known;
  if (!secret.empty()) connection += "PWD=" + Braced(secret) + ";";
  auto* const text = reinterpret_cast<SQLCHAR*>(connection.data());
  const SQLRETURN result =
      library_->driverConnect(connection_.Get(), nullptr, text,
                              static_cast<SQLSMALLINT>(std::min<std::size_t>(
                                  connection.size(), std::numeric_limits<SQLSMALLINT>::max())),
                              nullptr, 0, nullptr, SQL_DRIVER_NOPROMPT);
  connected_ = Succeeded(result);
  if (!connected_) {
    FailHandle(SQL_HANDLE_DBC, connection_.Get());
    const bool unknown = error_.find("Can't open lib") != std::string::npos;
    if (unknown) error_ += "; please name an installed ODBC driver";
    return false;
  }
  FindDialect();
  return true;
}

std::string COdbcConnection::Info(SQLUSMALLINT which) const {
  char text[128] = {};
  SQLSMALLINT length = 0;
  const bool told =
      Succeeded(library_->getInfo(connection_.Get(), which, text, sizeof text - 1, &length));
  return told ? text : "";
}

// A blank for the mark says that names stand without any.
void COdbcConnection::FindDialect() {
  dialect_ = SqlDialectOf(Info(SQL_DBMS_NAME));
  const std::string mark = Info(SQL_IDENTIFIER_QUOTE_CHAR);
  if (mark.empty()) return;
  dialect_.openName = dialect_.closeName = mark[0] == ' ' ? '\0' : mark[0];
}

void COdbcConnection::Close() {
  statement_.Free();
  if (connected_) {
    if (transaction_) library_->endTran(SQL_HANDLE_DBC, connection_.Get(), SQL_ROLLBACK);
    library_->disconnect(connection_.Get());
  }
  connected_ = transaction_ = false;
  connection_.Free();
  environment_.Free();
}

bool COdbcConnection::FailHandle(SQLSMALLINT kind, SQLHANDLE handle) {
  SQLWCHAR state[6] = {};
  SQLWCHAR text[512] = {};
  SQLINTEGER native = 0;
  SQLSMALLINT length = 0;
  constexpr SQLSMALLINT kRoom = 512;
  if (!Succeeded(library_->getDiagRecW(kind, handle, 1, state, &native, text, kRoom, &length))) {
    return Fail("the ODBC driver failed without a reason");
  }
  std::string message;
  for (const SQLWCHAR* unit = text; *unit != 0; ++unit) AppendCodePoint(*unit, &message);
  refused_ = state[0] == '2' && state[1] == '8';
  return Fail(message);
}

bool COdbcConnection::FailStatement() {
  return FailHandle(SQL_HANDLE_STMT, statement_.Get());
}

bool COdbcConnection::NewStatement() {
  return statement_.Allocate(library_, SQL_HANDLE_STMT, connection_.Get()) ||
         FailHandle(SQL_HANDLE_DBC, connection_.Get());
}

bool COdbcConnection::Execute(const std::string& sql) {
  if (!NewStatement()) return false;
  const SQLRETURN result = library_->execDirectW(statement_.Get(), WideOf(sql).data(), SQL_NTS);
  return Succeeded(result) || result == SQL_NO_DATA || FailStatement();
}

bool COdbcConnection::Prepare(const std::string& sql) {
  if (!NewStatement()) return false;
  return Succeeded(library_->prepareW(statement_.Get(), WideOf(sql).data(), SQL_NTS)) ||
         FailStatement();
}

bool COdbcConnection::BeginTransaction() {
  transaction_ = Succeeded(
      library_->setConnectAttr(connection_.Get(), SQL_ATTR_AUTOCOMMIT,
                               reinterpret_cast<SQLPOINTER>(std::size_t{SQL_AUTOCOMMIT_OFF}), 0));
  return transaction_ || FailHandle(SQL_HANDLE_DBC, connection_.Get());
}

bool COdbcConnection::Commit() {
  statement_.Free();
  const bool done = Succeeded(library_->endTran(SQL_HANDLE_DBC, connection_.Get(), SQL_COMMIT));
  if (done) transaction_ = false;
  return done || FailHandle(SQL_HANDLE_DBC, connection_.Get());
}

// Those of the database that is connected to; some drivers know the tables of all databases of the
// server, others do not know the name of the one.
bool COdbcConnection::ListTables(std::vector<std::string>* names) {
  const std::string database = Info(SQL_DATABASE_NAME);
  if (!database.empty() && !ListTables(database, names)) return false;
  return !names->empty() || ListTables("", names);
}

// The third column of the list is the table's name.
bool COdbcConnection::ListTables(std::string database, std::vector<std::string>* names) {
  constexpr SQLUSMALLINT kNameColumn = 3;
  constexpr std::size_t kMostTables = 10000;
  char kind[] = "TABLE";
  if (!NewStatement()) return false;
  auto* const catalog = database.empty() ? nullptr : reinterpret_cast<SQLCHAR*>(database.data());
  if (!Succeeded(library_->tables(statement_.Get(), catalog, SQL_NTS, nullptr, 0, nullptr, 0,
                                  reinterpret_cast<SQLCHAR*>(kind), SQL_NTS))) {
    return FailStatement();
  }
  while (names->size() < kMostTables && Succeeded(library_->fetch(statement_.Get()))) {
    SQLWCHAR name[256] = {};
    SQLLEN length = 0;
    if (!Succeeded(library_->getData(statement_.Get(), kNameColumn, SQL_C_WCHAR, name, sizeof name,
                                     &length))) {
      continue;
    }
    std::string text;
    for (const SQLWCHAR* unit = name; *unit != 0; ++unit) AppendCodePoint(*unit, &text);
    if (!text.empty()) names->push_back(text);
  }
  return true;
}

}  // namespace statrn32
