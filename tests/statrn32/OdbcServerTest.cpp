// Connection files that lead to a server: one of PostgreSQL, started for these tests in a folder of
// its own. Without the server's programs or its ODBC driver they are skipped.
#include <cstdlib>
#include <filesystem>
#include <unistd.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "statrn32/StFiles.h"

#if defined(__SANITIZE_ADDRESS__)
// The driver does not give back all of its own memory.
extern "C" const char* __lsan_default_suppressions() {  // NOLINT: the name that is looked for
  return "leak:psqlodbcw.so";
}
#endif

using namespace sttest;  // NOLINT: a test's own names
using testing::HasSubstr;

namespace {

constexpr std::int32_t kMsSql = 28;  // whatever the extension says, the server is asked what it is
constexpr const char* kPassword = "open } sesame";

// The folder of the newest release's programs; empty when there is none.
std::string Programs() {
  std::string newest;
  std::error_code none;
  for (const auto& entry : std::filesystem::directory_iterator("/usr/lib/postgresql", none)) {
    const std::filesystem::path bin = entry.path() / "bin";
    if (std::filesystem::exists(bin / "initdb")) newest = std::max(newest, bin.string());
  }
  return newest;
}

// A server that listens on a socket in its folder only. It refuses to be root's.
class Server {
 public:
  Server() {
    if (Programs().empty()) return;
    MakeFile(folder_.Name("password"), std::string(kPassword) + "\n");
    const std::string all = folder_.Name("");
    std::filesystem::permissions(all, std::filesystem::perms(0755));
    if (geteuid() == 0 && std::system(("chown -R nobody " + all).c_str()) != 0) return;
    runs_ = Run("initdb -D " + Data() + " -U vex -A scram-sha-256 -E UTF8 --locale=C.UTF-8 -N " +
                "--pwfile=" + folder_.Name("password")) &&
            Run("pg_ctl -D " + Data() + " -w -l " + folder_.Name("log") +
                " -o \"-c listen_addresses='' -c fsync=off -c unix_socket_directories=" + all +
                "\" start");
  }
  ~Server() { Stop(); }
  void Stop() {
    if (runs_) Run("pg_ctl -D " + Data() + " -m immediate stop");
    runs_ = false;
  }
  bool Runs() const { return runs_; }
  bool Sql(const std::string& statements) {
    MakeFile(folder_.Name("sql"), statements);
    return Run("psql -q -v ON_ERROR_STOP=1 -h " + folder_.Name("") + " -U vex -d postgres -f " +
               folder_.Name("sql"));
  }
  std::string Connection(const std::string& table) const {
    const std::string keys = "[ODBC]\nDRIVER=PostgreSQL Unicode\nDATABASE=postgres\nUID=vex\n";
    return keys + "SERVER=" + folder_.Name("") + "\n[TABLE]\nNAME=" + table + "\n";
  }

 private:
  std::string Data() const { return folder_.Name("data"); }
  bool Run(const std::string& command) const {
    const std::string user = geteuid() == 0 ? "setpriv --reuid nobody --clear-groups " : "";
    const std::string whole = "cd / && PGPASSWORD='" + std::string(kPassword) + "' " + user +
                              Programs() + "/" + command + " >/dev/null 2>&1";
    return std::system(whole.c_str()) == 0;
  }

  TempFolder folder_;
  bool runs_ = false;
};

class OdbcServer : public testing::Test {
 protected:
  static void SetUpTestSuite() { server = new Server; }
  static void TearDownTestSuite() {
    delete server;
    server = nullptr;
  }
  void SetUp() override {
    setenv("VEXDATA_PASSWORD", kPassword, 1);
    if (!server->Runs()) GTEST_SKIP() << "no server of PostgreSQL to start";
    MakeFile(file_, server->Connection("pg_class"));
    const std::string error = ReadFile(kMsSql, file_).error;
    const bool absent = error.find("PostgreSQL Unicode") != std::string::npos ||
                        error.find("not installed") != std::string::npos ||
                        error.find("Data source name not found") != std::string::npos;
    if (absent) GTEST_SKIP() << "no ODBC driver for PostgreSQL: " << error;
    ASSERT_EQ(error, "");
  }
  void TearDown() override { unsetenv("VEXDATA_PASSWORD"); }
  Table ReadTable(const std::string& table) {
    MakeFile(file_, server->Connection(table));
    return ReadFile(kMsSql, file_);
  }
  std::string WriteTable(const Table& values, const std::string& table, std::int64_t cases = -1) {
    MakeFile(file_, server->Connection(table));
    return WriteFile(values, kMsSql, file_, cases).error;
  }

  static Server* server;
  TempFolder folder_;
  std::string file_ = folder_.Name("t.sql");
};
Server* OdbcServer::server = nullptr;

Table People() {
  Table table;
  table.columns = {{"name", "", ST_TYPE_STRING, 20, 0, {}},
                   {"Age in years", "", ST_TYPE_NUMERIC, 8, 2, {}},
                   {"notes", "", ST_TYPE_STRING, 20000, 0, {}}};
  table.records = {{Text("Käthe Ω 🚴"), Number(0.1), Text(std::string(9000, 'x') + "ü")},
                   {Text("O'Hara \\"), Missing(), Missing()},
                   {Text(""), Number(-2.5e300), Text("a\nb")}};
  return table;
}

TEST_F(OdbcServer, ColumnsOfAllKindsAreRead) {
  ASSERT_TRUE(server->Sql(
      "CREATE TABLE kinds (a smallint, b bigint, c numeric(12,3), d double precision, e boolean,"
      " f text, g char(4), h date, i timestamp, j time, k bytea);"
      "INSERT INTO kinds VALUES (-7, 9007199254740991, 1234.567, 'NaN', true, 'Käthe', 'ab',"
      " '2020-02-29', '1999-12-31 12:00', '06:00', '\\x00'),"
      " (NULL, NULL, NULL, NULL, NULL, NULL, NULL, NULL, NULL, NULL, NULL);"));
  const Table table = ReadTable("kinds");
  ASSERT_EQ(table.error, "");
  ASSERT_EQ(table.columns.size(), 10U);  // bytes are left out
  ASSERT_EQ(table.records.size(), 2U);
  const auto& first = table.records[0];
  const double numbers[] = {-7, 9007199254740991, 1234.567};
  for (std::size_t i = 0; i < 3; ++i) EXPECT_EQ(first[i].number, numbers[i]) << i;
  EXPECT_EQ(first[3].status, ST_STATUS_MISSING);
  EXPECT_EQ(table.columns[4].type, ST_TYPE_NUMERIC);
  EXPECT_EQ(first[4].number, 1);
  EXPECT_EQ(first[5].text, "Käthe");
  const double dates[] = {43890, 36525.5, 0.25};
  for (std::size_t i = 0; i < 3; ++i) {
    EXPECT_EQ(table.columns[7 + i].type, ST_TYPE_DATE);
    EXPECT_DOUBLE_EQ(first[7 + i].number, dates[i]) << i;
  }
  for (const Value& value : table.records[1]) EXPECT_EQ(value.status, ST_STATUS_MISSING);
}

TEST_F(OdbcServer, WhatIsWrittenIsReadAgain) {
  ASSERT_EQ(WriteTable(People(), "people"), "");
  ASSERT_EQ(WriteTable(People(), "people"), "");  // further rows
  const Table table = ReadTable("people");
  ASSERT_EQ(table.error, "");
  ASSERT_EQ(table.records.size(), 6U);
  EXPECT_EQ(table.columns[1].name, "Age in years");
  const Table people = People();
  for (std::size_t i = 0; i < 6; ++i) {
    for (std::size_t var = 0; var < 3; ++var) {
      const Value& wanted = people.records[i % 3][var];
      EXPECT_EQ(table.records[i][var].status, wanted.status) << i << " " << var;
      EXPECT_EQ(table.records[i][var].text, wanted.text) << i << " " << var;
      EXPECT_EQ(table.records[i][var].number, wanted.number) << i << " " << var;
    }
  }
}

TEST_F(OdbcServer, AFailureLeavesTheDatabaseAsItWas) {
  EXPECT_THAT(WriteTable(People(), "fresh", 2), HasSubstr("more records"));
  EXPECT_THAT(ReadTable("fresh").error, HasSubstr("fresh"));  // was not made
  ASSERT_EQ(WriteTable(People(), "kept"), "");
  EXPECT_THAT(WriteTable(People(), "kept", 2), HasSubstr("more records"));
  Table other = People();
  other.columns[0].name = "nowhere";
  EXPECT_THAT(WriteTable(other, "kept"), HasSubstr("nowhere"));
  EXPECT_EQ(ReadTable("kept").records.size(), 3U);
}

TEST_F(OdbcServer, AWrongPasswordAndAServerThatIsNotThereAreTold) {
  setenv("VEXDATA_PASSWORD", "wrong", 1);
  EXPECT_THAT(ReadTable("people").error, HasSubstr("password"));
  setenv("VEXDATA_PASSWORD", kPassword, 1);
  EXPECT_THAT(ReadTable("no_such_table").error, HasSubstr("no_such_table"));
  MakeFile(file_, "[ODBC]\nDRIVER=PostgreSQL Unicode\nSERVER=/nowhere\nUID=vex\n");
  EXPECT_THAT(ReadFile(kMsSql, file_).error, HasSubstr("/nowhere"));
}

// The last one: nothing can be asked of the server behind it.
TEST_F(OdbcServer, ThatStopsInTheMidstIsAnError) {
  constexpr int kRecords = 100000;
  ASSERT_TRUE(server->Sql("CREATE TABLE many AS SELECT generate_series(1, " +
                          std::to_string(kRecords) + ") AS n, repeat('x', 100) AS t;"));
  MakeFile(file_, server->Connection("many"));
  ST_ENV* const env = ST_OpenEnvironment();
  ST_FILE* const file = ST_OpenInputFile(env, kMsSql, file_.c_str());
  ASSERT_EQ(ST_ReadDict(file), 2) << ST_GetErrorMsg(env);
  int records = 0;
  while (records < 10 && ST_ReadRecord(file) == 1) ++records;
  server->Stop();
  int got = 1;
  while ((got = ST_ReadRecord(file)) == 1) ++records;
  EXPECT_EQ(got, -1);
  EXPECT_LT(records, kRecords);
  EXPECT_THAT(ST_GetErrorMsg(env), HasSubstr(file_));
  ST_CloseEnvironment(env);
  EXPECT_NE(WriteTable(People(), "people"), "");
}

}  // namespace
