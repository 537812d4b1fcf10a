#include "transfer/ProgramFileTypes.h"

std::vector<HostFileType> ProgramFileTypes() {
  return {
      {"SPSS Compressed Data File", "*.zsav", "", 22},
      {"SAS Transport File", "*.xpt", "", 12},
      {"Access 2007 Database", "*.accdb", "", 23},
      {"Minitab Portable Worksheet", "*.mtp", "", 37},
      {"Excel Workbook", "*.xlsx;*.xlsm", "", 900},
      {"OpenDocument Spreadsheet", "*.ods", "", 901},
      {"SQLite Database", "*.sqlite;*.sqlite3", "", 902},
      {"JSON Lines", "*.jsonl;*.ndjson", "", 903},
  };
}
