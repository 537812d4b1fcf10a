// The ODBC driver manager, loaded when a connection file is opened: programs run without it.
#pragma once

#include <sql.h>
#include <sqlext.h>
#include <string>

namespace statrn32 {

struct ODBC_LIBRARY {
  decltype(&SQLAllocHandle) allocHandle = nullptr;
  decltype(&SQLFreeHandle) freeHandle = nullptr;
  decltype(&SQLSetEnvAttr) setEnvAttr = nullptr;
  decltype(&SQLSetConnectAttr) setConnectAttr = nullptr;
  decltype(&SQLDriverConnect) driverConnect = nullptr;
  decltype(&SQLDisconnect) disconnect = nullptr;
  decltype(&SQLEndTran) endTran = nullptr;
  decltype(&SQLExecDirectW) execDirectW = nullptr;
  decltype(&SQLPrepareW) prepareW = nullptr;
  decltype(&SQLExecute) execute = nullptr;
  decltype(&SQLFetch) fetch = nullptr;
  decltype(&SQLGetData) getData = nullptr;
  decltype(&SQLNumResultCols) numResultCols = nullptr;
  decltype(&SQLDescribeColW) describeColW = nullptr;
  decltype(&SQLBindParameter) bindParameter = nullptr;
  decltype(&SQLTables) tables = nullptr;
  decltype(&SQLGetDiagRecW) getDiagRecW = nullptr;
  decltype(&SQLGetInfo) getInfo = nullptr;
};

// Null with the reason in `error` when it is not installed.
const ODBC_LIBRARY* LoadOdbc(std::string* error);

}  // namespace statrn32
