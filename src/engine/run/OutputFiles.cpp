#include "engine/run/OutputFiles.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <map>
#include <system_error>
#include <thread>

#include <sys/resource.h>

#include "engine/run/FileIdentity.h"
#include "vexutils/BlockIo.h"

namespace {

// Every side file stays open to the end; the usual limit is lower than a process may have.
void AllowOpenFiles(std::size_t files) {
  constexpr rlim_t kOthers = 64;
  rlimit limit{};
  if (getrlimit(RLIMIT_NOFILE, &limit) != 0 || limit.rlim_cur >= files + kOthers) return;
  limit.rlim_cur = std::min<rlim_t>(files + kOthers, limit.rlim_max);
  setrlimit(RLIMIT_NOFILE, &limit);
}

}  // namespace

void COutputFile::Write(const void* data, std::size_t size) {
  if (diverted_ == EDiverted::Lost) return;
  buffer_.append(static_cast<const char*>(data), size);
  if (diverted_ == EDiverted::Kept) return;
  if (buffer_.size() >= kBlockBytes) Flush();
}

void COutputFile::WriteAtStart(const void* data, std::size_t size) {
  if (diverted_ != EDiverted::No) return;
  Flush();
  if (error_ == 0 && !WriteAt(file_.Descriptor(), 0, data, size)) error_ = errno;
}

void COutputFile::Flush() {
  if (diverted_ != EDiverted::No) return;
  if (error_ == 0 && !WriteAt(file_.Descriptor(), offset_, buffer_.data(), buffer_.size())) {
    error_ = errno;
  }
  offset_ += static_cast<std::int64_t>(buffer_.size());
  buffer_ = {};
}

void COutputFiles::AddInput(std::string_view what, const std::string& name) {
  inputs_.push_back({std::string(what), name});
}

void COutputFiles::AddOutput(std::string_view keyword, const std::string& name) {
  if (!name.empty()) outputs_.emplace_back(std::string(keyword), name);
}

bool COutputFiles::Create(FAULT& fault) {
  struct Named {
    std::string what;
    FILEIDENTITY identity;
  };
  std::vector<Named> taken;
  for (const Input& input : inputs_) {
    taken.push_back({input.what + " (" + input.name + ")", IdentityOf(input.name)});
  }
  for (const COutputFile& output : outputs_) {
    const FILEIDENTITY identity = IdentityOf(output.Name());
    for (const Named& other : taken) {
      if (!identity.SameAs(other.identity)) continue;
      fault.cause = "the file of " + output.Keyword() + "= (" + output.Name() +
                    ") is the same as " + other.what;
      fault.remedy = "Give every output a name of its own. Nothing was written.";
      return false;
    }
    taken.push_back({"the file of " + output.Keyword() + "= (" + output.Name() + ")", identity});
  }
  AllowOpenFiles(outputs_.size());
  for (COutputFile& output : outputs_) {
    if (another_) {
      output.Divert(false);
      continue;
    }
    if (output.file_.Create(output.Name())) continue;
    fault.cause = "the file of " + output.Keyword() + "= (" + output.Name() +
                  ") cannot be written: " + output.file_.ErrorText();
    fault.remedy = "Check the name, its folder and that the file may be written.";
    Discard();
    return false;
  }
  return true;
}

COutputFile* COutputFiles::Find(std::string_view keyword) {
  return Find(keyword, 0);
}

COutputFile* COutputFiles::Find(std::string_view keyword, std::size_t which) {
  for (COutputFile& output : outputs_) {
    if (output.Keyword() == keyword && which-- == 0) return &output;
  }
  return nullptr;
}

void COutputFiles::MakeKept(COutputFiles& kept) const {
  for (const COutputFile& output : outputs_) {
    kept.AddOutput(output.Keyword(), output.Name());
    kept.outputs_.back().Divert(true);
  }
}

std::vector<std::string> COutputFiles::KeptBytes() const {
  std::vector<std::string> bytes;
  for (const COutputFile& output : outputs_) bytes.push_back(output.KeptBytes());
  return bytes;
}

void COutputFiles::Append(const std::vector<std::string>& bytes) {
  std::size_t k = 0;
  for (COutputFile& output : outputs_) output.Write(bytes.at(k++));
}

bool COutputFiles::CheckWritten(FAULT& fault) const {
  for (const COutputFile& output : outputs_) {
    if (output.error_ == 0) continue;
    fault.cause = "the file of " + output.Keyword() + "= (" + output.Name() +
                  ") cannot be written: " + std::strerror(output.error_);
    fault.remedy = "Make room on the disk. No output file was changed.";
    return false;
  }
  return true;
}

bool COutputFiles::Commit(FAULT& fault) {
  if (another_) return true;
  for (COutputFile& output : outputs_) output.Flush();
  if (!CheckWritten(fault)) {
    Discard();
    return false;
  }
  return SyncFiles(fault) && PutInPlace(fault);
}

bool COutputFiles::SyncFiles(FAULT& fault) {
  constexpr std::size_t kAtOnce = 8;  // the disk takes them together
  std::vector<COutputFile*> left;
  for (COutputFile& output : outputs_) left.push_back(&output);
  std::atomic<std::size_t> next{0};
  const auto sync = [&] {
    for (std::size_t i = next++; i < left.size(); i = next++) {
      if (left[i]->file_.Sync()) left[i] = nullptr;
    }
  };
  std::vector<std::thread> helpers;
  try {
    while (helpers.size() + 1 < std::min(kAtOnce, left.size())) helpers.emplace_back(sync);
  } catch (const std::system_error&) {  // the threads that are there do the rest
  }
  sync();
  for (std::thread& helper : helpers) helper.join();
  const auto failed = std::find_if(left.begin(), left.end(),
                                   [](const COutputFile* output) { return output != nullptr; });
  if (failed == left.end()) return true;
  return FailToPut(**failed, "", fault);
}

bool COutputFiles::PutInPlace(FAULT& fault) {
  std::string inPlace;
  std::map<std::string, std::string> folders;  // each with one of its files
  bool done = true;
  for (COutputFile& output : outputs_) {
    if (!output.file_.PutInPlace()) {
      done = FailToPut(output, inPlace, fault);
      break;
    }
    inPlace += (inPlace.empty() ? "" : ", ") + output.Name();
    const std::string& target = output.file_.Target();
    folders.emplace(std::filesystem::path(target).parent_path().string(), target);
  }
  for (const auto& [folder, target] : folders) CSideFile::SyncFolderOf(target);
  return done;
}

bool COutputFiles::FailToPut(const COutputFile& output, const std::string& inPlace, FAULT& fault) {
  fault.cause = "the file of " + output.Keyword() + "= (" + output.Name() +
                ") cannot be put in place: " + output.file_.ErrorText();
  fault.remedy = inPlace.empty() ? "No output file was changed."
                                 : "These files are in place already: " + inPlace + ".";
  Discard();
  return false;
}

void COutputFiles::Discard() {
  for (COutputFile& output : outputs_) output.file_.Discard();
}
