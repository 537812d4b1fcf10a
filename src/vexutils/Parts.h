// Work on a range that is divided between the calling thread and a few others.
#pragma once

#include <atomic>
#include <cstdint>
#include <functional>

// Moving blocks between memory and files gains little from more.
inline constexpr int kMaxParts = 4;

// One thread's share of the range 0 to n.
class CPart {
 public:
  CPart(std::int64_t first, std::int64_t end, bool onCallingThread,
        const std::atomic<bool>& stopped)
      : first_(first), end_(end), onCallingThread_(onCallingThread), stopped_(stopped) {}

  std::int64_t First() const { return first_; }
  std::int64_t End() const { return end_; }

  // Progress is told from the calling thread only. The shares are of equal size, so its own stands
  // for all.
  bool OnCallingThread() const { return onCallingThread_; }
  double Fraction(std::int64_t done) const {
    return static_cast<double>(done - first_) / static_cast<double>(end_ - first_);
  }

  // Whether another share has failed, so that this one may end early.
  bool Stopped() const { return stopped_.load(std::memory_order_relaxed); }

 private:
  std::int64_t first_;
  std::int64_t end_;
  bool onCallingThread_;
  const std::atomic<bool>& stopped_;
};

// Does a share of the work; returns 0 or an errno value.
using PartWork = std::function<int(CPart&)>;

// Divides 0 to `size` among the machine's processors, at most kMaxParts, the first share to the
// calling thread, and waits for all. Returns false on failure, with the first reason in errno. An
// exception of `work` on the calling thread passes through; on another one it is ENOMEM.
bool InParts(std::int64_t size, const PartWork& work);
