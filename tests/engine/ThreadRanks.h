// Ranks that are threads of the test, so that runs over several of them need no launcher.
#pragma once

#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

#include "engine/parallel/Ranks.h"

class CThreadGroup {
 public:
  explicit CThreadGroup(int count) : count_(count), texts_(count), states_(count) {}

  // Runs `work` once for each rank, all at the same time.
  void Run(const std::function<void(CRanks&)>& work) {
    std::vector<std::thread> threads;
    for (int rank = 0; rank < count_; ++rank) {
      threads.emplace_back([this, rank, &work] {
        CRank own(*this, rank);
        work(own);
      });
    }
    for (std::thread& thread : threads) thread.join();
  }

 private:
  static constexpr int kRunning = 100;

  class CRank final : public CRanks {
   public:
    CRank(CThreadGroup& group, int rank) : group_(group), rank_(rank) {}
    int Rank() const override { return rank_; }
    int Count() const override { return group_.count_; }
    bool Exchange(const std::string& mine, std::vector<std::string>& all) override {
      return !over_ && Meet(kRunning, mine, all);
    }
    bool End(ERANKEND end, const CString& reason) override {
      std::vector<std::string> all;
      return !over_ && Meet(static_cast<int>(end), reason, all) && end == ERANKEND::Done;
    }
    CString Problem() const override { return over_ ? "another one ended" : CString(); }

   private:
    bool Meet(int state, const std::string& mine, std::vector<std::string>& all) {
      std::vector<int> states;
      group_.Meet(rank_, state, mine, states, all);
      for (const int other : states) over_ = over_ || other != states.front();
      return !over_;
    }
    CThreadGroup& group_;
    int rank_;
    bool over_ = false;
  };

  void Meet(int rank, int state, const std::string& mine, std::vector<int>& states,
            std::vector<std::string>& all) {
    std::unique_lock<std::mutex> hold(lock_);
    changed_.wait(hold, [this] { return !leaving_; });
    texts_[static_cast<std::size_t>(rank)] = mine;
    states_[static_cast<std::size_t>(rank)] = state;
    if (++present_ == count_) {
      leaving_ = true;
      changed_.notify_all();
    }
    changed_.wait(hold, [this] { return leaving_; });
    all = texts_;
    states = states_;
    if (--present_ == 0) {
      leaving_ = false;
      changed_.notify_all();
    }
  }

  int count_;
  std::mutex lock_;
  std::condition_variable changed_;
  int present_ = 0;
  bool leaving_ = false;
  std::vector<std::string> texts_;
  std::vector<int> states_;
};
