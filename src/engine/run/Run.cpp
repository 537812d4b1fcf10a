#include "engine/run/Run.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <exception>
#include <new>
#include <random>

#include "engine/bootstrap/MomentSamples.h"
#include "engine/data/DataFile.h"
#include "engine/parallel/Parcel.h"
#include "engine/procedures/ProcedureTable.h"
#include "engine/procedures/RunProcedures.h"
#include "engine/run/EngineRun.h"
#include "engine/run/FileIdentity.h"
#include "engine/run/Interrupt.h"
#include "engine/run/RankRepetition.h"
#include "engine/screen/DataOutput.h"
#include "engine/screen/Screening.h"
#include "engine/stats/Cancel.h"
#include "engine/stats/Parallel.h"
#include "engine/syntax/Syntax.h"
#include "host/Text.h"

namespace {

constexpr std::int64_t kLargestSyntax = std::int64_t{64} << 20;

class CRun {
 public:
  CRun(const CString& syntaxName, const CString& outputName, const RUNOPTIONS& options)
      : syntaxName_(syntaxName),
        outputName_(outputName),
        options_(options),
        ranks_(options.ranks != nullptr ? *options.ranks : alone_),
        progress_(ranks_.IsFirst() ? options.progress : nullptr) {
    // The ranks of a machine divide its processors among them.
    if (options_.threads == 0 && !ranks_.IsAlone()) {
      options_.threads = std::max(1, stats::ThreadCount(0) / ranks_.CountHere());
    }
    if (!ranks_.IsFirst()) files_.BelongToAnother();
  }

  ERUNRESULT Run() {
    if (IdentityOf(outputName_).SameAs(IdentityOf(syntaxName_))) {
      ranks_.End(ERANKEND::Failed, {});
      return Refuse("the output file is the syntax file: " + outputName_, ERUNRESULT::Usage);
    }
    FAULT fault;
    const bool done = GuardedWork(fault);
    if (dataIsOutput_) {
      ranks_.End(ERANKEND::Failed, {});
      return Refuse("the output file is the data file: " + outputName_, ERUNRESULT::Failed);
    }
    return Finish(done, fault);
  }

 private:
  ERUNRESULT Refuse(const CString& reason, ERUNRESULT result) {
    if (options_.messages != nullptr && ranks_.IsFirst()) {
      std::fprintf(options_.messages, "torvik: %s\n", reason.c_str());
    }
    return result;
  }

  bool GuardedWork(FAULT& fault) {
    try {
      stats::SetCancelTest(IsInterrupted);
      return Work(fault);
    } catch (const stats::Cancelled&) {
      fault = FAULT();
      return false;
    } catch (const std::bad_alloc&) {
      fault.cause = "there is not enough memory for this run";
      fault.remedy = "Select fewer variables with SE, or close other programs.";
    } catch (const std::exception& error) {
      fault.cause = CString("the engine failed: ") + error.what();
      fault.remedy = "Please report this together with the syntax.";
    }
    return false;
  }

  bool Work(FAULT& fault) {
    std::vector<SyntaxLine> lines;
    if (!ReadSyntax(lines, fault) || !ParseHeader(lines, job_.header, fault)) return false;
    dataIsOutput_ =
        IdentityOf(outputName_).SameAs(IdentityOf(ExistingDataFile(job_.header.dataFile)));
    if (dataIsOutput_) return false;
    if (!file_.Open(job_.header.dataFile, fault)) {
      fault.line = job_.header.line.number;
      fault.lineText = Trimmed(job_.header.line.text);
      return false;
    }
    const bool parsed = ParseCommands(lines, file_.Data(), job_, fault);
    report_.SetPage(job_.output.Columns());
    if (job_.output.fieldsGiven) {
      report_.SetNumbers(
          {static_cast<int>(job_.output.width), static_cast<int>(job_.output.decimals), true});
    }
    if (!parsed || !CheckProcedures(fault) || !OpenOutputs(fault)) return false;
    Heading();
    return Repeat(fault);
  }

  bool ReadSyntax(std::vector<SyntaxLine>& lines, FAULT& fault) {
    CDescriptor file;
    CString text;
    const bool opened = file.OpenForReading(syntaxName_.c_str());
    const std::int64_t bytes = opened ? FileBytes(file.Get()) : -1;
    if (bytes > kLargestSyntax) {
      fault.cause = syntaxName_ + " is too large for a syntax file";
      return false;
    }
    if (bytes >= 0) {
      text.resize(static_cast<std::size_t>(bytes));
      const std::int64_t got = ReadAt(file.Get(), 0, text.data(), text.size());
      if (got == bytes) {
        lines = SplitSyntax(text);
        return true;
      }
    }
    fault.cause = "the syntax file " + syntaxName_ + " cannot be read: " + std::strerror(errno);
    return false;
  }

  // Procedures that the syntax knows and this engine does not have yet.
  bool CheckProcedures(FAULT& fault) const {
    for (const PROCEDURE& procedure : job_.procedures) {
      if (RunnerOf(procedure) != nullptr) continue;
      fault = {procedure.line.number, CString(Trimmed(procedure.line.text)),
               ProcedureName(procedure) + " is not built into this engine yet",
               "Leave the line out to screen the data, or run the syntax with another engine."};
      return false;
    }
    return CheckBootstrap(job_, fault);
  }

  bool OpenOutputs(FAULT& fault) {
    files_.AddInput("the syntax file", syntaxName_);
    files_.AddInput("the data file", file_.Name());
    files_.AddInput("the output of this run", outputName_);
    const OUTPUTLINE& output = job_.output;
    files_.AddOutput("SM", output.momentFile);
    files_.AddOutput("ME", output.meansFile);
    files_.AddOutput("SD", output.deviationsFile);
    files_.AddOutput("AC", output.covarianceFile);
    files_.AddOutput("AV", output.varianceFile);
    for (const CString& name : SavedFileNames(job_)) files_.AddOutput("RA", name);
    if (ReadsThresholds(job_)) {
      files_.AddInput("the file of the thresholds (TH)", output.thresholdFile);
    } else {
      files_.AddOutput("TH", output.thresholdFile);
    }
    files_.AddOutput("BM", output.sampleMomentFile);
    if (files_.Create(fault)) return true;
    fault.line = output.line.number;
    fault.lineText = Trimmed(output.line.text);
    return false;
  }

  void Heading() {
    report_.Title("TORVIK " VEX_VERSION "    Data screening");
    report_.Gap();
    titled_ = true;
  }

  // One seed for all ranks: that of the first.
  bool FindSeed(std::uint64_t& seed, FAULT& fault) {
    if (job_.output.seed) {
      seed = static_cast<std::uint64_t>(*job_.output.seed);
      return true;
    }
    CParcelWriter mine;
    mine.Put(static_cast<std::uint64_t>(std::random_device{}() & 0x7fffffffU));
    std::vector<std::string> all;
    if (!ranks_.Exchange(mine.Bytes(), all)) {
      fault.cause = ranks_.Problem();
      return false;
    }
    seed = CParcelReader(all.front()).Take<std::uint64_t>();
    return true;
  }

  bool Repeat(FAULT& fault) {
    std::uint64_t seed = 0;
    if (!FindSeed(seed, fault)) return false;
    const std::int64_t repetitions = job_.Repetitions();
    if (job_.header.repetitions > 1 && job_.output.repetitions > 0 &&
        job_.header.repetitions != job_.output.repetitions) {
      report_.Warning("RP stands twice with different counts; the one of the output line, " +
                      std::to_string(job_.output.repetitions) + ", is used.");
    }
    if (!ranks_.IsAlone() && repetitions > 1 && job_.output.dataFile.empty()) {
      return ShareRepetitions(repetitions, seed, fault);
    }
    for (std::int64_t r = 0; r < repetitions; ++r) {
      progress_.BeginRepetition(r, repetitions);
      WriteRepetition(r, repetitions);
      const PLACE place{report_, files_, &ranks_};
      if (!RunOnce(r, seed, place, failed_, fault) || !files_.CheckWritten(fault)) return false;
      WriteOut();
    }
    return true;
  }

  // Where a repetition writes, and who shares its work.
  struct PLACE {
    CReport& report;
    COutputFiles& files;
    CRanks* ranks;
  };

  void WriteRepetition(std::int64_t repetition, std::int64_t repetitions) {
    if (repetitions == 1) return;
    report_.Section("Repetition " + std::to_string(repetition + 1) + " of " +
                    std::to_string(repetitions));
  }

  bool RunOnce(std::int64_t repetition, std::uint64_t seed, const PLACE& place, bool& failed,
               FAULT& fault) {
    JOB job = job_;
    CCaseSource source(file_, job, seed, repetition, options_.threads);
    ENGINERUN run{job,        file_, source, place.report, place.files, progress_, options_.threads,
                  repetition, seed,  {}};
    run.ranks = place.ranks;
    // Samples take more time than the screening before them.
    constexpr int kScreeningOf = 10;
    if (job.procedures.empty() && AsksForMomentSamples(job)) progress_.BeginPart(0, kScreeningOf);
    const bool done =
        (job.procedures.empty() ? ScreenData(run, fault) : RunProcedures(run, fault)) &&
        (!run.faults.empty() || BootstrapMoments(run, fault));
    for (const FAULT& found : run.faults) place.report.Error(found);
    failed = !run.faults.empty();
    return done && !failed;
  }

  // Each rank makes every so many repetitions by itself; all then write those of a round in order.
  bool ShareRepetitions(std::int64_t repetitions, std::uint64_t seed, FAULT& fault) {
    for (std::int64_t first = 0; first < repetitions; first += ranks_.Count()) {
      RANKREPETITION own;
      const std::int64_t mine = first + ranks_.Rank();
      if (mine < repetitions) {
        CReport report = report_.Blank();
        COutputFiles files;
        files_.MakeKept(files);
        own.done = RunOnce(mine, seed, {report, files, nullptr}, own.failed, own.fault);
        if (!own.done && !own.failed && !own.fault) return false;  // interrupted
        own.text = report.Text();
        own.warnings = report.Warnings();
        own.files = files.KeptBytes();
      }
      std::vector<std::string> all;
      if (!ranks_.Exchange(own.Pack(), all)) {
        fault.cause = ranks_.Problem();
        return false;
      }
      const std::int64_t end = std::min<std::int64_t>(repetitions, first + ranks_.Count());
      for (std::int64_t r = first; r < end; ++r) {
        const RANKREPETITION one = RANKREPETITION::Unpack(all[static_cast<std::size_t>(r - first)]);
        WriteRepetition(r, repetitions);
        report_.Append(one.text, one.warnings);
        failed_ = one.failed;
        fault = one.fault;
        if (!one.done) return false;
        files_.Append(one.files);
        if (!files_.CheckWritten(fault)) return false;
        WriteOut();
      }
    }
    return true;
  }

  // Hands the finished text to the file, so that many repetitions do not gather in memory.
  void WriteOut() {
    if (!ranks_.IsFirst()) {
      report_.TakeText();
      return;
    }
    if (out_.Descriptor() < 0 && (outError_ != 0 || !out_.Create(outputName_))) {
      outError_ = out_.Error();
      return;
    }
    const CString text = report_.TakeText();
    if (outError_ == 0 && !WriteAt(out_.Descriptor(), outBytes_, text.data(), text.size())) {
      outError_ = errno;
    }
    outBytes_ += static_cast<std::int64_t>(text.size());
  }

  ERUNRESULT Finish(bool done, FAULT& fault) {
    // No file is put in place before every rank is done.
    const bool mine = done;
    const bool stopped = !done && !fault && !failed_;
    done = ranks_.End(done      ? ERANKEND::Done
                      : stopped ? ERANKEND::Interrupted
                                : ERANKEND::Failed,
                      fault.cause);
    if (mine && !done) fault.cause = ranks_.Problem();
    if (done) done = files_.Commit(fault);
    if (!done) files_.Discard();
    if (!titled_) Heading();
    const bool interrupted = !done && !fault && !failed_;
    if (interrupted) {
      report_.Gap();
      report_.Paragraph(
          "The run was interrupted. What stands above is not complete, and no other "
          "file was written.");
    }
    if (fault) report_.Error(fault);
    report_.End();
    report_.Gap();
    report_.Paragraph(done          ? "End of the run."
                      : interrupted ? "Interrupted."
                                    : "The run ended with an error. No other file was written.");
    if (done) progress_.End();
    WriteOut();
    if (ranks_.IsFirst() && outError_ == 0 && !out_.Commit()) outError_ = out_.Error();
    if (outError_ != 0) {
      return Refuse(
          "the output file " + outputName_ + " cannot be written: " + std::strerror(outError_),
          ERUNRESULT::Failed);
    }
    return done ? ERUNRESULT::Done : interrupted ? ERUNRESULT::Interrupted : ERUNRESULT::Failed;
  }

  CString syntaxName_;
  CString outputName_;
  RUNOPTIONS options_;
  CRanks alone_;
  CRanks& ranks_;
  JOB job_;
  CDataFile file_;
  CReport report_;
  COutputFiles files_;
  CProgress progress_;
  bool titled_ = false;
  bool dataIsOutput_ = false;
  bool failed_ = false;
  CSideFile out_;
  std::int64_t outBytes_ = 0;
  int outError_ = 0;
};

}  // namespace

ERUNRESULT RunEngine(const CString& syntaxName, const CString& outputName,
                     const RUNOPTIONS& options) {
  return CRun(syntaxName, outputName, options).Run();
}
