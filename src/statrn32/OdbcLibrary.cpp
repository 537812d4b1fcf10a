#include "statrn32/OdbcLibrary.h"

#include <dlfcn.h>

namespace statrn32 {
namespace {

template <typename FUNCTION>
bool Find(void* library, const char* name, FUNCTION* out) {
  *out = reinterpret_cast<FUNCTION>(dlsym(library, name));
  return *out != nullptr;
}

bool FindAll(void* library, ODBC_LIBRARY* out) {
  return Find(library, "SQLAllocHandle", &out->allocHandle) &&
         Find(library, "SQLFreeHandle", &out->freeHandle) &&
         Find(library, "SQLSetEnvAttr", &out->setEnvAttr) &&
         Find(library, "SQLSetConnectAttr", &out->setConnectAttr) &&
         Find(library, "SQLDriverConnect", &out->driverConnect) &&
         Find(library, "SQLDisconnect", &out->disconnect) &&
         Find(library, "SQLEndTran", &out->endTran) &&
         Find(library, "SQLExecDirectW", &out->execDirectW) &&
         Find(library, "SQLPrepareW", &out->prepareW) &&
         Find(library, "SQLExecute", &out->execute) && Find(library, "SQLFetch", &out->fetch) &&
         Find(library, "SQLGetData", &out->getData) &&
         Find(library, "SQLNumResultCols", &out->numResultCols) &&
         Find(library, "SQLDescribeColW", &out->describeColW) &&
         Find(library, "SQLBindParameter", &out->bindParameter) &&
         Find(library, "SQLTables", &out->tables) &&
         Find(library, "SQLGetDiagRecW", &out->getDiagRecW) &&
         Find(library, "SQLGetInfo", &out->getInfo);
}

}  // namespace

const ODBC_LIBRARY* LoadOdbc(std::string* error) {
  constexpr const char* kName = "libodbc.so.2";
  static ODBC_LIBRARY library;
  static const bool loaded = [] {
    void* const handle = dlopen(kName, RTLD_NOW | RTLD_LOCAL);
    return handle != nullptr && FindAll(handle, &library);
  }();
  if (loaded) return &library;
  *error =
      std::string("the ODBC driver manager (") + kName + ", package libodbc2) is not installed";
  return nullptr;
}

}  // namespace statrn32
