#include "vexutils/Parts.h"

#include <algorithm>
#include <cerrno>
#include <system_error>
#include <thread>
#include <vector>

namespace {

class CTeam {
 public:
  explicit CTeam(const PartWork& work) : work_(work) {}
  ~CTeam() {
    // Only an exception on the calling thread leaves helpers behind.
    if (!helpers_.empty()) Fail(ECANCELED);
    Join();
  }
  CTeam(const CTeam&) = delete;
  CTeam& operator=(const CTeam&) = delete;

  void Hire(std::int64_t first, std::int64_t end) {
    try {
      helpers_.emplace_back([this, first, end] { Help(first, end); });
    } catch (const std::system_error&) {
      Do(first, end, false);  // no further thread is to be had
    }
  }

  void Do(std::int64_t first, std::int64_t end, bool onCallingThread) {
    CPart part(first, end, onCallingThread, stopped_);
    if (const int error = work_(part)) Fail(error);
  }

  int Join() {
    for (std::thread& helper : helpers_) helper.join();
    helpers_.clear();
    return error_;
  }

 private:
  void Help(std::int64_t first, std::int64_t end) {
    try {
      Do(first, end, false);
    } catch (...) {
      Fail(ENOMEM);
    }
  }

  void Fail(int error) {
    int none = 0;
    error_.compare_exchange_strong(none, error);
    stopped_ = true;
  }

  const PartWork& work_;
  std::vector<std::thread> helpers_;
  std::atomic<int> error_{0};
  std::atomic<bool> stopped_{false};
};

}  // namespace

bool InParts(std::int64_t size, const PartWork& work) {
  const auto processors = static_cast<std::int64_t>(std::thread::hardware_concurrency());
  const std::int64_t parts = std::min(size, std::clamp<std::int64_t>(processors, 1, kMaxParts));
  if (parts == 0) return true;
  CTeam team(work);
  const std::int64_t each = size / parts;
  const std::int64_t longer = size % parts;  // so many shares have one more
  std::int64_t first = each + (longer > 0 ? 1 : 0);
  for (std::int64_t part = 1; part < parts; ++part) {
    const std::int64_t end = first + each + (part < longer ? 1 : 0);
    team.Hire(first, end);
    first = end;
  }
  team.Do(0, each + (longer > 0 ? 1 : 0), true);
  const int error = team.Join();
  if (error != 0) errno = error;
  return error == 0;
}
