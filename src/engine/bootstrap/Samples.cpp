#include "engine/bootstrap/Samples.h"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <mutex>

#include "engine/parallel/Parcel.h"
#include "engine/run/Interrupt.h"
#include "engine/screen/Faults.h"
#include "engine/stats/Parallel.h"
#include "engine/stats/Resampling.h"
#include "vexutils/FreeMemory.h"

namespace {

constexpr int kMegabyte = 20;

bool CheckMemory(const ENGINERUN& run, std::size_t estimates, FAULT& fault) {
  // The values, once more while they are summarised.
  const double bytes = 2.0 * static_cast<double>(run.job.output.samples) *
                       static_cast<double>(estimates) * sizeof(double);
  if (bytes <= static_cast<double>(FreeMemoryBytes())) return true;
  fault = OutputFault(run,
                      std::to_string(run.job.output.samples) + " samples of " +
                          std::to_string(estimates) + " estimates need about " +
                          std::to_string(static_cast<std::int64_t>(bytes) >> kMegabyte) +
                          " MB of memory",
                      "Ask for fewer samples with BS=, or select fewer variables with SE.");
  return false;
}

// The samples of this run, each computed by itself.
class CSampler {
 public:
  CSampler(ENGINERUN& run, const SAMPLEPLAN& plan, const SampleWork& work, BOOTSTRAPSAMPLES& result)
      : run_(run), plan_(plan), work_(work), result_(result) {}

  bool Run(FAULT& fault) {
    if (!CheckMemory(run_, plan_.estimates, fault) || !ReadCases(fault)) return false;
    const stats::CResampler resampler(store_.Weights());
    constexpr double kPercent = 100;
    result_.samples = run_.job.output.samples;
    result_.n = resampler.N();
    result_.draws = std::max<std::int64_t>(
        1,
        std::llround(result_.n * static_cast<double>(run_.job.output.sampleFraction) / kPercent));
    result_.estimates = plan_.estimates;
    result_.bytes = store_.Bytes();
    result_.values.assign(static_cast<std::size_t>(result_.samples) * plan_.estimates, 0);
    result_.failed.assign(static_cast<std::size_t>(result_.samples), 0);
    const std::int64_t own = CountOf(run_.Part());
    run_.progress.Plan(1);
    stats::ParallelFor(run_.threads, own, [&](std::int64_t k) {
      if (IsInterrupted()) return;
      Compute(resampler, run_.Part() + k * run_.Parts());
      Tell(own);
    });
    return !IsInterrupted() && Share(fault) && AnyLeft(fault);
  }

 private:
  // Samples that a process computes: every so many, from its own number on.
  std::int64_t CountOf(int part) const {
    return (result_.samples - part + run_.Parts() - 1) / run_.Parts();
  }

  double* ValuesOf(std::int64_t sample) {
    return result_.values.data() + static_cast<std::size_t>(sample) * result_.estimates;
  }

  // Takes the samples that other processes have computed.
  bool Share(FAULT& fault) {
    const int parts = run_.Parts();
    if (parts == 1) return true;
    CParcelWriter mine;
    mine.Put(result_.failures);
    mine.Put(result_.firstFailed);
    mine.Put(result_.firstCause);
    for (std::int64_t s = run_.Part(); s < result_.samples; s += parts) {
      mine.Put(result_.failed[static_cast<std::size_t>(s)]);
      mine.PutDoubles(ValuesOf(s), result_.estimates);
    }
    std::vector<std::string> all;
    if (!run_.Exchange(mine.Bytes(), all, fault)) return false;
    result_.failures = result_.firstFailed = 0;
    for (int part = 0; part < parts; ++part) {
      CParcelReader theirs(all[static_cast<std::size_t>(part)]);
      result_.failures += theirs.Take<std::int64_t>();
      const auto first = theirs.Take<std::int64_t>();
      const CString cause = theirs.TakeText();
      if (first > 0 && (result_.firstFailed == 0 || first < result_.firstFailed)) {
        result_.firstFailed = first;
        result_.firstCause = cause;
      }
      for (std::int64_t s = part; s < result_.samples; s += parts) {
        result_.failed[static_cast<std::size_t>(s)] = theirs.Take<std::uint8_t>();
        theirs.TakeDoubles(ValuesOf(s), result_.estimates);
      }
    }
    return true;
  }

  bool AnyLeft(FAULT& fault) const {
    if (result_.failures < result_.samples) return true;
    fault = OutputFault(run_, "bootstrapping: no sample has estimates: " + result_.firstCause,
                        "Take larger samples with SF=100, more cases, or other variables.");
    return false;
  }

  bool ReadCases(FAULT& fault) {
    CCaseSource source(run_.file, plan_.job, run_.seed, run_.repetition, run_.threads);
    const bool done = store_.Read(
        source, plan_.columns, plan_.listwise, FreeMemoryBytes(),
        [](double) { return !IsInterrupted(); }, fault);
    if (!done) {
      if (fault) {
        fault = OutputFault(run_, "bootstrapping: " + fault.cause,
                            "Select fewer variables with SE, or fewer cases with SC.");
      }
      return false;
    }
    if (!store_.Weights().empty()) return true;
    fault = OutputFault(run_, "bootstrapping: no case has values to draw from",
                        "Change the selection of cases, or leave out BS=.");
    return false;
  }

  void Compute(const stats::CResampler& resampler, std::int64_t sample) {
    std::vector<double> counts;
    resampler.Draw(result_.draws,
                   stats::CSampleStream(run_.seed, static_cast<std::uint64_t>(run_.repetition),
                                        static_cast<std::uint64_t>(sample)),
                   counts);
    JOB job = plan_.job;
    CCaseSource source(run_.file, job, store_, counts);
    CReport report;
    COutputFiles files;
    CProgress progress(nullptr);
    ENGINERUN own{job,      run_.file, source,          report,    files,
                  progress, 1,         run_.repetition, run_.seed, {}};
    std::vector<double> values;
    FAULT fault;
    const bool done = work_(own, values, fault) && values.size() == plan_.estimates &&
                      std::all_of(values.begin(), values.end(),
                                  [](double value) { return std::isfinite(value); });
    if (done) {
      std::copy(values.begin(), values.end(), ValuesOf(sample));
      return;
    }
    NoteFailure(sample, fault);
  }

  void NoteFailure(std::int64_t sample, const FAULT& fault) {
    const std::lock_guard<std::mutex> hold(lock_);
    result_.failed[static_cast<std::size_t>(sample)] = 1;
    ++result_.failures;
    if (result_.firstFailed > 0 && result_.firstFailed < sample + 1) return;
    result_.firstFailed = sample + 1;
    result_.firstCause = fault ? fault.cause : CString("an estimate is no finite number");
  }

  void Tell(std::int64_t own) {
    const std::int64_t done = ++done_;
    const std::unique_lock<std::mutex> hold(telling_, std::try_to_lock);
    if (hold) run_.progress.Tell(static_cast<double>(done) / static_cast<double>(own));
  }

  ENGINERUN& run_;
  const SAMPLEPLAN& plan_;
  const SampleWork& work_;
  BOOTSTRAPSAMPLES& result_;
  CCaseStore store_;
  std::mutex lock_, telling_;
  std::atomic<std::int64_t> done_{0};
};

}  // namespace

bool DrawSamples(ENGINERUN& run, const SAMPLEPLAN& plan, const SampleWork& work,
                 BOOTSTRAPSAMPLES& result, FAULT& fault) {
  result = BOOTSTRAPSAMPLES();
  return CSampler(run, plan, work, result).Run(fault);
}
