// What goes through the pipe, in this order: the outcome of the opening and the tables; the outcome
// of the dictionary and the dictionary; the blocks, each behind a 1, and a 0; the error and the
// notes. The child may be damaged when it sends: what it says is checked like a file.
#include "statrn32/ChildReader.h"

#include <cerrno>
#include <cstring>
#include <filesystem>

#include "host/statrn32.h"

namespace statrn32 {
namespace {

constexpr std::uint64_t kMostTexts = std::uint64_t{1} << 28;  // bytes of one text or of a block
constexpr std::uint64_t kMostItems = std::uint64_t{1} << 24;
constexpr std::int32_t kDisplays[] = {ST_DISPLAY_DATE, ST_DISPLAY_TIME, ST_DISPLAY_DATETIME};

// Gathers what goes into the pipe.
class CMessage {
 public:
  template <typename NUMBER>
  CMessage& Put(NUMBER number) {
    bytes_.append(reinterpret_cast<const char*>(&number), sizeof number);
    return *this;
  }
  CMessage& Put(const std::string& text) {
    Put<std::uint64_t>(text.size());
    bytes_ += text;
    return *this;
  }
  CMessage& Put(const std::vector<std::string>& texts) {
    Put<std::uint64_t>(texts.size());
    for (const std::string& text : texts) Put(text);
    return *this;
  }
  bool Send(CPipeWriter* out) {
    const bool sent = out->Write(bytes_.data(), bytes_.size());
    bytes_.clear();
    return sent;
  }

 private:
  std::string bytes_;
};

void PutVariable(const VARIABLE& variable, CMessage* out) {
  out->Put(variable.name).Put(variable.label).Put(variable.type);
  out->Put(static_cast<std::uint8_t>(variable.date)).Put(variable.width).Put(variable.decimals);
  out->Put(variable.labelSet).Put<std::uint64_t>(variable.missing.size());
  for (const MISSING_RANGE& range : variable.missing) {
    out->Put(range.low).Put(range.high).Put(range.lowText).Put(range.highText);
  }
}

void PutLabels(const LABEL_SET& set, CMessage* out) {
  out->Put<std::uint64_t>(set.size());
  for (const VALUE_LABEL& label : set) {
    out->Put(label.number).Put(label.text).Put(static_cast<std::uint8_t>(label.isText));
    out->Put(label.tag).Put(label.label);
  }
}

bool SendDictionary(const CReader& reader, const DICTIONARY& dictionary, CPipeWriter* out) {
  CMessage message;
  message.Put(reader.Error()).Put(static_cast<std::uint8_t>(reader.NamesFound()));
  message.Put(reader.GuessedEncoding());
  message.Put(reader.EpochDay()).Put(dictionary.cases);
  for (const std::int32_t display : kDisplays) {
    message.Put(static_cast<std::uint8_t>(reader.DateKindOf(display)));
  }
  message.Put<std::uint64_t>(dictionary.labelSets.size());
  for (const LABEL_SET& set : dictionary.labelSets) PutLabels(set, &message);
  message.Put<std::uint64_t>(dictionary.variables.size());
  for (const VARIABLE& variable : dictionary.variables) PutVariable(variable, &message);
  return message.Send(out);
}

bool SendBlock(const CReader& reader, const RECORD_BLOCK& block, std::size_t variables,
               CPipeWriter* out) {
  const std::size_t values = block.records * variables;
  CMessage message;
  message.Put<std::uint8_t>(1).Put(reader.GuessedEncoding());
  message.Put(reader.Progress()).Put<std::uint64_t>(block.records);
  message.Put<std::uint64_t>(block.texts.size());
  return message.Send(out) && out->Write(block.cells.data(), values * sizeof(CELL)) &&
         out->Write(block.status.data(), values) &&
         out->Write(block.texts.data(), block.texts.size());
}

std::int64_t SizeOf(const std::string& name) {
  std::error_code failed;
  const std::uintmax_t size = std::filesystem::file_size(name, failed);
  return failed ? 0 : static_cast<std::int64_t>(size);
}

}  // namespace

void CChildReader::Work(CPipeWriter* out) const {
  const std::unique_ptr<CReader> reader = factory_();
  reader->SetOptions(Options());
  CMessage message;
  const bool open = reader->Open(name_);
  message.Put(reader->Error()).Put(reader->Tables());
  if (!message.Send(out) || !open) return;
  DICTIONARY dictionary;
  const bool read = reader->ReadDictionary(&dictionary);
  if (!SendDictionary(*reader, dictionary, out) || !read) return;
  while (const RECORD_BLOCK* const block = reader->NextBlock()) {
    if (!SendBlock(*reader, *block, dictionary.variables.size(), out)) return;
  }
  message.Put<std::uint8_t>(0).Put(reader->Error()).Put(reader->Notes()).Send(out);
}

bool CChildReader::Open(const std::string& name) {
  constexpr std::int64_t kMemory = std::int64_t{512} << 20;
  constexpr std::int64_t kMemoryPerByte = 64;
  constexpr int kSeconds = 15;
  constexpr std::int64_t kBytesPerSecond = 1 << 20;
  name_ = name;
  if (CChildProcess::IsChild()) {
    here_ = factory_();
    here_->SetOptions(Options());
    return DoneHere(here_->Open(name));
  }
  const std::int64_t size = SizeOf(name);
  const bool started =
      child_.Start([this](CPipeWriter* out) { Work(out); }, kMemory + size * kMemoryPerByte,
                   kSeconds + static_cast<int>(size / kBytesPerSecond));
  if (!started) return FailFile(std::strerror(errno));
  std::string error;
  if (!ReceiveText(&error)) return false;
  if (!error.empty()) return Fail(error);
  return ReceiveTexts(&tables_);
}

bool CChildReader::Receive(void* data, std::size_t size) {
  if (!Error().empty()) return false;
  if (child_.Read(data, size)) return true;
  const std::string how = child_.End();
  return FailFile("the file is damaged: " + (how.empty() ? "its reading stands still" : how));
}

bool CChildReader::ReceiveText(std::string* text) {
  std::uint64_t size = 0;
  if (!Receive(&size, sizeof size)) return false;
  if (size > kMostTexts) return FailFile("the file is damaged: a text of " + std::to_string(size));
  text->resize(size);
  return Receive(text->data(), size);
}

bool CChildReader::ReceiveTexts(std::vector<std::string>* texts) {
  std::uint64_t count = 0;
  if (!Receive(&count, sizeof count)) return false;
  for (std::uint64_t i = 0; i < count; ++i) {
    if (!ReceiveText(&texts->emplace_back())) return false;
  }
  return true;
}

bool CChildReader::ReceiveVariable(VARIABLE* variable) {
  std::uint8_t date = 0;
  const bool there = ReceiveText(&variable->name) && ReceiveText(&variable->label) &&
                     Receive(&variable->type, sizeof variable->type) && Receive(&date, 1) &&
                     Receive(&variable->width, sizeof variable->width) &&
                     Receive(&variable->decimals, sizeof variable->decimals) &&
                     Receive(&variable->labelSet, sizeof variable->labelSet);
  variable->date = static_cast<DATE_KIND>(date);
  return there && ReceiveMissing(&variable->missing);
}

bool CChildReader::ReceiveMissing(std::vector<MISSING_RANGE>* ranges) {
  std::uint64_t count = 0;
  if (!Receive(&count, sizeof count)) return false;
  for (std::uint64_t i = 0; i < count; ++i) {
    MISSING_RANGE& range = ranges->emplace_back();
    if (!Receive(&range.low, sizeof range.low) || !Receive(&range.high, sizeof range.high) ||
        !ReceiveText(&range.lowText) || !ReceiveText(&range.highText)) {
      return false;
    }
  }
  return true;
}

bool CChildReader::ReceiveFlag(bool* flag) {
  std::uint8_t byte = 0;
  if (!Receive(&byte, 1)) return false;
  *flag = byte != 0;
  return true;
}

bool CChildReader::ReceiveLabels(LABEL_SET* set) {
  std::uint64_t count = 0;
  if (!Receive(&count, sizeof count)) return false;
  for (std::uint64_t i = 0; i < count; ++i) {
    VALUE_LABEL& label = set->emplace_back();
    if (!Receive(&label.number, sizeof label.number) || !ReceiveText(&label.text) ||
        !ReceiveFlag(&label.isText) || !Receive(&label.tag, 1) || !ReceiveText(&label.label)) {
      return false;
    }
  }
  return true;
}

bool CChildReader::ReadDictionary(DICTIONARY* out) {
  if (here_) return DoneHere(here_->ReadDictionary(out));
  std::string error;
  if (!ReceiveText(&error)) return false;
  if (!error.empty()) return Fail(error);
  std::uint64_t sets = 0;
  std::uint64_t variables = 0;
  if (!ReceiveFlag(&namesFound_) || !ReceiveText(&guessedEncoding_) ||
      !Receive(&epochDay_, sizeof epochDay_) || !Receive(&out->cases, sizeof out->cases) ||
      !Receive(dateKinds_.data(), dateKinds_.size()) || !Receive(&sets, sizeof sets)) {
    return false;
  }
  for (std::uint64_t i = 0; i < sets; ++i) {
    if (!ReceiveLabels(&out->labelSets.emplace_back())) return false;
  }
  if (!Receive(&variables, sizeof variables)) return false;
  for (std::uint64_t i = 0; i < variables; ++i) {
    VARIABLE& variable = out->variables.emplace_back();
    if (!ReceiveVariable(&variable)) return false;
    if (variable.labelSet >= static_cast<int>(sets)) return FailFile("the file is damaged");
    if (variable.type == ST_TYPE_STRING) textVariables_.push_back(i);
  }
  variables_ = variables;
  return true;
}

const RECORD_BLOCK* CChildReader::NextBlock() {
  if (here_) {
    const RECORD_BLOCK* const block = here_->NextBlock();
    DoneHere(here_->Error().empty());
    return block;
  }
  bool more = false;
  if (!ReceiveFlag(&more)) return nullptr;
  if (more) return ReceiveBlock() ? &block_ : nullptr;
  std::string error;
  if (!ReceiveText(&error) || !ReceiveTexts(&notes_)) return nullptr;
  if (!error.empty()) Fail(error);
  progress_ = 1;
  return nullptr;
}

bool CChildReader::ReceiveBlock() {
  std::uint64_t records = 0;
  std::uint64_t texts = 0;
  if (!ReceiveText(&guessedEncoding_) || !Receive(&progress_, sizeof progress_) ||
      !Receive(&records, sizeof records) || !Receive(&texts, sizeof texts)) {
    return false;
  }
  if (records > kMostItems || variables_ > kMostItems || records * variables_ > kMostItems ||
      texts == 0 || texts > kMostTexts) {
    return FailFile("the file is damaged: a block of " + std::to_string(records) + " records");
  }
  const std::size_t values = records * variables_;
  block_.records = records;
  block_.cells.resize(values);
  block_.status.resize(values);
  block_.texts.resize(texts);
  return Receive(block_.cells.data(), values * sizeof(CELL)) &&
         Receive(block_.status.data(), values) && Receive(block_.texts.data(), texts) &&
         CheckTexts();
}

// Every text begins and ends within the block's texts.
bool CChildReader::CheckTexts() {
  bool good = block_.texts.back() == '\0';
  for (std::size_t record = 0; record < block_.records; ++record) {
    const CELL* const cells = block_.cells.data() + record * variables_;
    for (const std::size_t var : textVariables_) good &= cells[var].text < block_.texts.size();
  }
  return good || FailFile("the file is damaged: texts that are not there");
}

DATE_KIND CChildReader::DateKindOf(std::int32_t display) const {
  if (here_) return here_->DateKindOf(display);
  for (std::size_t i = 0; i < dateKinds_.size(); ++i) {
    if (display == kDisplays[i]) return static_cast<DATE_KIND>(dateKinds_[i]);
  }
  return DATE_KIND::None;
}

}  // namespace statrn32
