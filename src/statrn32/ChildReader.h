// Keeps a reader apart in a child process, for libraries that damaged files bring down.
#pragma once

#include <array>
#include <functional>
#include <memory>

#include "statrn32/ChildProcess.h"
#include "statrn32/Reader.h"

namespace statrn32 {

// What stands in the child is a reader like any other; this one asks it. A fault there, a loop
// without end or memory out of all proportion to the file becomes an error here. The child works
// ahead as far as a pipe holds, so memory stays as bounded as the reader's own. In such a child
// itself the reader works in place.
class CChildReader final : public CReader {
 public:
  using FACTORY = std::function<std::unique_ptr<CReader>()>;
  explicit CChildReader(FACTORY factory) : factory_(std::move(factory)) {}

  bool Open(const std::string& name) override;
  bool ReadDictionary(DICTIONARY* out) override;
  const RECORD_BLOCK* NextBlock() override;
  std::vector<std::string> Tables() const override { return here_ ? here_->Tables() : tables_; }
  bool NamesFound() const override { return here_ ? here_->NamesFound() : namesFound_; }
  std::string GuessedEncoding() const override {
    return here_ ? here_->GuessedEncoding() : guessedEncoding_;
  }
  std::vector<std::string> Notes() const override { return here_ ? here_->Notes() : notes_; }
  double Progress() const override { return here_ ? here_->Progress() : progress_; }
  std::int64_t EpochDay() const override { return here_ ? here_->EpochDay() : epochDay_; }
  DATE_KIND DateKindOf(std::int32_t display) const override;

 private:
  void Work(CPipeWriter* out) const;
  bool Receive(void* data, std::size_t size);
  bool ReceiveText(std::string* text);
  bool ReceiveTexts(std::vector<std::string>* texts);
  bool ReceiveVariable(VARIABLE* variable);
  bool ReceiveMissing(std::vector<MISSING_RANGE>* ranges);
  bool ReceiveLabels(LABEL_SET* set);
  bool ReceiveFlag(bool* flag);
  bool ReceiveBlock();
  bool CheckTexts();
  bool DoneHere(bool done) { return done || Fail(here_->Error()); }
  bool FailFile(const std::string& what) { return Fail(name_ + ": " + what); }

  FACTORY factory_;
  std::unique_ptr<CReader> here_;  // works in place
  std::string name_;
  CChildProcess child_;
  std::vector<std::string> tables_;
  std::vector<std::string> notes_;
  bool namesFound_ = false;
  std::string guessedEncoding_;
  double progress_ = -1;
  std::int64_t epochDay_ = 0;
  std::array<std::uint8_t, 3> dateKinds_{};
  std::size_t variables_ = 0;
  std::vector<std::size_t> textVariables_;
  RECORD_BLOCK block_;
};

}  // namespace statrn32
