#include "statrn32/ReadStatReader.h"

#include <system_error>

#include "host/statrn32.h"
#include "statrn32/Formats.h"
#include "statrn32/ReadStatDictionary.h"

namespace statrn32 {

CReadStatReader::~CReadStatReader() {
  input_.Stop();
  ring_.Stop();
  if (thread_.joinable()) thread_.join();
}

bool CReadStatReader::Open(const std::string& name) {
  name_ = name;
  if (!input_.Open(name)) return Fail(OpenFailureText(name));
  std::string first(kFirstBytes, '\0');
  const std::int64_t got = input_.Read(first.data(), kFirstBytes);
  if (got < 0) return Fail(OpenFailureText(name));
  first.resize(static_cast<std::size_t>(got));
  const std::string refusal = WhyNotRecognised(format_.code, first);
  return refusal.empty() || Fail(name + ": " + refusal);
}

// By the texts of the dictionary, else by those of the records.
std::string CReadStatReader::GuessedEncoding() const {
  return guessedEncoding_.empty() && pass_ ? pass_->GuessedEncoding() : guessedEncoding_;
}

bool CReadStatReader::ReadDictionary(DICTIONARY* out) {
  PARSE_RESULT refused;
  input_.Seek(0);
  if (!format_.check(&input_, &refused.refusal)) {
    refused.position = input_.Position();
    return Fail(FailureText(name_, input_, refused));
  }
  CDictionaryPass pass(format_, &input_, Options().encoding);
  if (!pass.Run(out)) return Fail(FailureText(name_, input_, pass.Result()));
  if (format_.addLabels != nullptr) format_.addLabels(name_, pass.SetNames(), out);
  dictionary_.variables = out->variables;
  encoding_ = pass.Encoding();
  guessedEncoding_ = pass.GuessedEncoding();
  return true;
}

bool CReadStatReader::Start() {
  pass_.emplace(format_, &input_, dictionary_, encoding_, &ring_);
  try {
    thread_ = std::thread(&CRecordPass::Run, &*pass_);
  } catch (const std::system_error& error) {
    return Fail(name_ + ": cannot be read now: " + error.what());
  }
  return true;
}

const RECORD_BLOCK* CReadStatReader::NextBlock() {
  // Without variables ReadStat would look for the end of the records for ever in some formats.
  if (ended_ || dictionary_.variables.empty()) return nullptr;
  if (!pass_ && !Start()) {
    ended_ = true;
    return nullptr;
  }
  if (const RECORD_BLOCK* const block = ring_.Next()) return block;
  ended_ = true;
  thread_.join();
  const PARSE_RESULT& result = pass_->Result();
  if (result.code != READSTAT_OK) Fail(FailureText(name_, input_, result));
  return nullptr;
}

DATE_KIND CReadStatReader::DateKindOf(std::int32_t display) const {
  switch (display) {
    case ST_DISPLAY_DATE:
      return format_.dateOfDisplay;
    case ST_DISPLAY_TIME:
      return DATE_KIND::TimeOfDay;
    case ST_DISPLAY_DATETIME:
      return format_.dateTimeOfDisplay;
    default:
      return DATE_KIND::None;
  }
}

}  // namespace statrn32
