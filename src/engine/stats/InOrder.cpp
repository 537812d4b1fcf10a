#include "engine/stats/InOrder.h"

#include <condition_variable>
#include <map>
#include <mutex>

#include "engine/stats/Parallel.h"

namespace stats {

namespace {

class CInOrder {
 public:
  CInOrder(int threads, std::int64_t count, const std::function<PieceWorker()>& makeWorker)
      : threads_(threads), count_(count), ahead_(2 * std::int64_t{threads}), make_(makeWorker) {}

  bool Run() {
    ParallelFor(threads_, threads_, [this](std::int64_t) { Guarded(); });
    return !stopped_;
  }

 private:
  void Guarded() {
    try {
      const PieceWorker worker = make_();
      for (std::int64_t piece = 0; Next(piece);) Deliver(piece, worker(piece));
    } catch (...) {
      const std::lock_guard<std::mutex> hold(lock_);
      Stop();
      throw;
    }
  }

  bool Next(std::int64_t& piece) {
    std::unique_lock<std::mutex> hold(lock_);
    if (stopped_ || next_ >= count_) return false;
    piece = next_++;
    moved_.wait(hold, [&] { return stopped_ || piece < done_ + ahead_; });
    return !stopped_;
  }

  void Deliver(std::int64_t piece, FinishPiece finish) {
    const std::lock_guard<std::mutex> hold(lock_);
    waiting_[piece] = std::move(finish);
    for (auto first = waiting_.begin();
         !stopped_ && first != waiting_.end() && first->first == done_;
         first = waiting_.erase(first)) {
      ++done_;
      if (!first->second()) Stop();
    }
    moved_.notify_all();
  }

  void Stop() {
    stopped_ = true;
    moved_.notify_all();
  }

  int threads_;
  std::int64_t count_, ahead_;
  const std::function<PieceWorker()>& make_;
  std::mutex lock_;  // of everything below
  std::condition_variable moved_;
  std::int64_t next_ = 0, done_ = 0;
  std::map<std::int64_t, FinishPiece> waiting_;
  bool stopped_ = false;
};

}  // namespace

bool ForEachInOrder(int threads, std::int64_t count,
                    const std::function<PieceWorker()>& makeWorker) {
  return CInOrder(ThreadCount(threads), count, makeWorker).Run();
}

}  // namespace stats
