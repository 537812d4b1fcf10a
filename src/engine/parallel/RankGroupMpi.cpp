// A build with MPI: the only file that knows it.
#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <mpi.h>
#include <optional>
#include <thread>

#include "engine/parallel/Launcher.h"
#include "engine/parallel/RankGroup.h"
#include "engine/run/Interrupt.h"

namespace {

using Clock = std::chrono::steady_clock;

// What every rank tells before anything is exchanged: whether it is still in the run, and where.
struct HEADER {
  std::int64_t state = 0;   // kRunning, or that of its end
  std::int64_t number = 0;  // of the exchange
  std::int64_t bytes = 0;   // that follow
};
constexpr std::int64_t kRunning = 100;

class CMpiRanks final : public CRanks {
 public:
  CMpiRanks() {
    MPI_Comm_rank(MPI_COMM_WORLD, &rank_);
    MPI_Comm_size(MPI_COMM_WORLD, &count_);
    MPI_Comm here = MPI_COMM_NULL;
    if (MPI_Comm_split_type(MPI_COMM_WORLD, MPI_COMM_TYPE_SHARED, 0, MPI_INFO_NULL, &here) ==
        MPI_SUCCESS) {
      MPI_Comm_size(here, &countHere_);
      MPI_Comm_free(&here);
    }
  }

  ~CMpiRanks() override {
    // Others may wait for what will never come.
    if (lost_) MPI_Abort(MPI_COMM_WORLD, EXIT_FAILURE);
    MPI_Finalize();
  }

  int Rank() const override { return rank_; }
  int Count() const override { return count_; }
  int CountHere() const override { return std::max(countHere_, 1); }

  bool Exchange(const std::string& mine, std::vector<std::string>& all) override {
    return !over_ && Meet(kRunning, mine, all);
  }

  bool End(ERANKEND end, const CString& reason) override {
    if (over_) return false;
    std::vector<std::string> all;
    const bool met = Meet(static_cast<std::int64_t>(end), reason, all);
    over_ = true;
    return met && end == ERANKEND::Done;
  }

  CString Problem() const override { return problem_; }

 private:
  // All ranks tell their headers, then their texts. True when all are at the same place.
  bool Meet(std::int64_t state, const std::string& mine, std::vector<std::string>& all) {
    mine_ = mine;
    own_ = {state, ++number_, static_cast<std::int64_t>(mine.size())};
    headers_.resize(static_cast<std::size_t>(count_));
    MPI_Request request = MPI_REQUEST_NULL;
    MPI_Iallgather(&own_, sizeof own_, MPI_BYTE, headers_.data(), sizeof own_, MPI_BYTE,
                   MPI_COMM_WORLD, &request);
    return Wait(request) && Gather(all) && Compare(headers_, all);
  }

  // Pieces of at most 1 GB, because MPI counts in 32 bits; as many for each rank as the longest
  // text needs.
  bool Gather(std::vector<std::string>& all) {
    constexpr std::int64_t kPiece = std::int64_t{1} << 30;
    const std::int64_t most = kPiece / count_;
    std::int64_t longest = 0;
    for (const HEADER& header : headers_) longest = std::max(longest, header.bytes);
    all.assign(headers_.size(), {});
    for (std::int64_t at = 0; at < longest; at += most) {
      sizes_.clear();
      places_.clear();
      int total = 0;
      for (const HEADER& header : headers_) {
        places_.push_back(total);
        sizes_.push_back(static_cast<int>(std::clamp<std::int64_t>(header.bytes - at, 0, most)));
        total += sizes_.back();
      }
      piece_.resize(static_cast<std::size_t>(total));
      const std::size_t from = std::min(static_cast<std::size_t>(at), mine_.size());
      MPI_Request request = MPI_REQUEST_NULL;
      MPI_Iallgatherv(mine_.data() + from, sizes_[static_cast<std::size_t>(rank_)], MPI_BYTE,
                      piece_.data(), sizes_.data(), places_.data(), MPI_BYTE, MPI_COMM_WORLD,
                      &request);
      if (!Wait(request)) return false;
      for (std::size_t k = 0; k < all.size(); ++k) {
        all[k].append(piece_, static_cast<std::size_t>(places_[k]),
                      static_cast<std::size_t>(sizes_[k]));
      }
    }
    return true;
  }

  bool Compare(const std::vector<HEADER>& headers, const std::vector<std::string>& all) {
    const bool same = std::all_of(headers.begin(), headers.end(), [&](const HEADER& header) {
      return header.state == headers.front().state && header.number == headers.front().number;
    });
    if (same) return true;
    over_ = true;
    for (std::size_t k = 0; k < headers.size() && problem_.empty(); ++k) {
      if (headers[k].state != static_cast<std::int64_t>(ERANKEND::Failed)) continue;
      problem_ = "process " + std::to_string(k + 1) + " of " + std::to_string(count_) +
                 " failed: " + (all[k].empty() ? "its part cannot be computed" : all[k]);
    }
    const bool interrupted = std::any_of(headers.begin(), headers.end(), [](const HEADER& header) {
      return header.state == static_cast<std::int64_t>(ERANKEND::Interrupted);
    });
    if (problem_.empty() && !interrupted) {
      problem_ =
          "the processes of this run do not agree; they may be different programs, or read "
          "different files";
    }
    return false;
  }

  // Waits without keeping a processor busy. When somebody asks to stop, the others get a moment to
  // arrive as well; then this rank ends without them, and all with it.
  bool Wait(MPI_Request& request) {
    const auto patience = std::chrono::milliseconds(rank_ == 0 ? 300 : 3000);
    auto nap = std::chrono::microseconds(20);
    std::optional<Clock::time_point> asked;
    for (;;) {
      int done = 0;
      if (MPI_Test(&request, &done, MPI_STATUS_IGNORE) != MPI_SUCCESS) break;
      if (done != 0) return true;
      if (IsInterrupted()) {
        if (!asked) asked = Clock::now();
        if (Clock::now() - *asked > patience) break;
      }
      std::this_thread::sleep_for(nap);
      nap = std::min(nap * 2, std::chrono::microseconds(2000));
    }
    lost_ = over_ = true;
    return false;
  }

  int rank_ = 0, count_ = 1, countHere_ = 1;
  std::int64_t number_ = 0;
  bool over_ = false;  // nobody waits for this rank any more
  bool lost_ = false;  // or somebody may
  CString problem_;
  // What a transfer reads and fills; it may still be under way when nobody waits for it any more.
  HEADER own_;
  std::vector<HEADER> headers_;
  std::string mine_, piece_;
  std::vector<int> sizes_, places_;
};

}  // namespace

const char* RankSupport() {
  return "MPI";
}

std::unique_ptr<CRanks> JoinRanks(int& argc, char**& argv) {
  if (LaunchedProcesses() < 1) return std::make_unique<CRanks>();
  int provided = 0;
  MPI_Init_thread(&argc, &argv, MPI_THREAD_FUNNELED, &provided);
  return std::make_unique<CMpiRanks>();
}
