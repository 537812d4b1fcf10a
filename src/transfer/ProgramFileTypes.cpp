#include "transfer/ProgramFileTypes.h"

std::vector<HostFileType> ProgramFileTypes() {
  return {
      {"SPSS Compressed Data File", "*.zsav", "", 22},
      {"SAS Transport File", "*.xpt", "", 12},
  };
}
