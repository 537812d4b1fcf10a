// Which of many sorted runs has the smallest key.
#pragma once

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

// A tree of losers: every inner node keeps the run that lost there, so that after the first run has
// moved on only the matches on its way to the root are played again. Of equal keys the run with the
// smaller number is first.
class CMergeTree {
 public:
  // The first keys of the runs, at least one.
  explicit CMergeTree(std::vector<std::uint64_t> keys)
      : keys_(std::move(keys)), losers_(keys_.size()) {
    first_ = keys_.size() == 1 ? 0 : Play(1);
  }

  std::size_t First() const { return first_; }
  std::uint64_t FirstKey() const { return keys_[first_]; }

  // Gives the first run its next key.
  void ReplaceFirst(std::uint64_t key) {
    keys_[first_] = key;
    std::size_t winner = first_;
    for (std::size_t node = (winner + keys_.size()) / 2; node > 0; node /= 2) {
      if (Before(losers_[node], winner)) std::swap(losers_[node], winner);
    }
    first_ = winner;
  }

 private:
  bool Before(std::size_t a, std::size_t b) const {
    return keys_[a] != keys_[b] ? keys_[a] < keys_[b] : a < b;
  }

  // Nodes count from 1, the root; the children of n are 2n and 2n + 1; from keys_.size() on they
  // are the runs.
  std::size_t Play(std::size_t node) {
    if (node >= keys_.size()) return node - keys_.size();
    const std::size_t left = Play(2 * node);
    const std::size_t right = Play(2 * node + 1);
    const bool leftWins = Before(left, right);
    losers_[node] = leftWins ? right : left;
    return leftWins ? left : right;
  }

  std::vector<std::uint64_t> keys_;
  std::vector<std::size_t> losers_;
  std::size_t first_ = 0;
};
