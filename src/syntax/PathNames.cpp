#include "syntax/PathNames.h"

namespace {

constexpr std::size_t kDriveBytes = 2;
constexpr std::size_t kMostBytes = 255;  // of the folder, and of the base name

bool IsLetter(char c) {
  return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}

}  // namespace

CString ReplaceExtension(const CString& path, std::string_view extension) {
  const bool hasDrive = path.size() >= kDriveBytes && IsLetter(path[0]) && path[1] == ':';
  const std::size_t folder = hasDrive ? kDriveBytes : 0;
  const std::size_t separator = path.find_last_of("/\\");
  const std::size_t name = separator == CString::npos ? folder : separator + 1;
  const std::size_t dot = path.rfind('.');
  const std::size_t nameEnd = dot == CString::npos || dot < name ? path.size() : dot;
  if (name - folder > kMostBytes || nameEnd - name > kMostBytes) return path;
  return path.substr(0, nameEnd).append(extension);
}
