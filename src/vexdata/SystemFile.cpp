#include "vexdata/SystemFile.h"

#include <cerrno>
#include <cstring>
#include <filesystem>

#include "host/Host.h"

bool OpenSystemFile(const CString& fileName, CDescriptor& file, VsfContents& contents) {
  if (!file.OpenForReading(fileName.c_str())) {
    AfxMessageBox(fileName + ": " +
                  (errno == ENOENT ? "The file does not exist!" : std::strerror(errno)));
    return false;
  }
  switch (ReadVsf(file.Get(), contents)) {
    case VsfStatus::Ok:
      return true;
    case VsfStatus::NotCorrect:
      AfxMessageBox(fileName + ": The file is not a correct VEXMOR data system file!");
      return false;
    case VsfStatus::ReadError:
      break;
  }
  AfxMessageBox(fileName + ": " + std::strerror(errno));
  return false;
}

bool MayWrite(const CString& fileName, bool overwrite) {
  std::error_code error;
  if (overwrite || !std::filesystem::exists(fileName, error)) return true;
  AfxMessageBox(fileName + " exists already; --overwrite replaces it");
  return false;
}
