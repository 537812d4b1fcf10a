#include "vexapp/FrameWindow.h"

#include <filesystem>

#include "vexapp/Display.h"

namespace {

namespace fs = std::filesystem;

// Without links, as far as the path exists. Empty where that cannot be told.
fs::path RealPath(const CString& path) {
  std::error_code error;
  const fs::path absolute = fs::absolute(path, error);
  if (error) return {};
  const fs::path real = fs::weakly_canonical(absolute, error);
  return error ? fs::path() : real;
}

}  // namespace

bool IsSamePath(const QString& a, const QString& b) {
  if (a.isEmpty() || b.isEmpty()) return false;
  std::error_code error;
  if (fs::equivalent(PathBytes(a), PathBytes(b), error)) return true;
  const fs::path real = RealPath(PathBytes(a));
  return !real.empty() && real == RealPath(PathBytes(b));
}
