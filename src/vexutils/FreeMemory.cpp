#include "vexutils/FreeMemory.h"

#include <algorithm>
#include <fstream>
#include <optional>
#include <string>
#include <unistd.h>

namespace {

std::optional<std::int64_t> AvailableOnMachine() {
  std::ifstream info("/proc/meminfo");
  std::string name;
  std::int64_t kibibytes = 0;
  std::string unit;
  while (info >> name >> kibibytes) {
    if (name == "MemAvailable:") return kibibytes * 1024;
    std::getline(info, unit);
  }
  return std::nullopt;
}

// Control groups of the unified hierarchy; the line of this process is "0::/path".
std::optional<std::int64_t> LimitOfGroup() {
  constexpr const char* kUnified = "0::";
  std::ifstream groups("/proc/self/cgroup");
  for (std::string line; std::getline(groups, line);) {
    if (line.rfind(kUnified, 0) != 0) continue;
    std::ifstream limit("/sys/fs/cgroup" + line.substr(3) + "/memory.max");
    std::int64_t bytes = 0;
    if (limit >> bytes) return bytes;  // "max", no limit, is no number
  }
  return std::nullopt;
}

std::int64_t HalfOfMachine() {
  return static_cast<std::int64_t>(sysconf(_SC_PHYS_PAGES)) / 2 * sysconf(_SC_PAGESIZE);
}

}  // namespace

std::int64_t FreeMemoryBytes() {
  const std::int64_t available = AvailableOnMachine().value_or(HalfOfMachine());
  return std::min(available, LimitOfGroup().value_or(available));
}
