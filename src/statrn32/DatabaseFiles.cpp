// The database rows: a file is a script or leads to a database, which its first bytes say.
#include <array>

#include "host/Text.h"
#include "statrn32/InputFile.h"
#include "statrn32/OdbcFiles.h"
#include "statrn32/SqlFiles.h"

namespace statrn32 {
namespace {

bool LeadsToDatabase(const std::string& name) {
  CInputFile file;
  std::array<char, 256> first;
  constexpr auto kRoom = static_cast<std::int64_t>(first.size());
  const std::int64_t got = file.Open(name) ? file.Read(first.data(), kRoom) : 0;
  return got > 0 && IsConnectionFile({first.data(), static_cast<std::size_t>(got)});
}

// Hands everything on to the reader that the file needs.
class CDatabaseReader final : public CReader {
 public:
  explicit CDatabaseReader(std::int32_t code) : code_(code) {}

  bool Open(const std::string& name) override {
    reader_ = LeadsToDatabase(name) ? ReadOdbcTable(code_) : ReadSqlScript(code_);
    reader_->SetOptions(Options());
    return Done(reader_->Open(name));
  }
  bool ReadDictionary(DICTIONARY* out) override { return Done(reader_->ReadDictionary(out)); }
  std::string GuessedEncoding() const override { return reader_->GuessedEncoding(); }
  const RECORD_BLOCK* NextBlock() override {
    const RECORD_BLOCK* const block = reader_->NextBlock();
    Done(reader_->Error().empty());
    return block;
  }
  std::vector<std::string> Tables() const override { return reader_->Tables(); }
  std::vector<std::string> Notes() const override { return reader_->Notes(); }
  double Progress() const override { return reader_->Progress(); }
  std::int64_t EpochDay() const override { return reader_->EpochDay(); }
  DATE_KIND DateKindOf(std::int32_t display) const override { return reader_->DateKindOf(display); }

 private:
  bool Done(bool done) { return done || Fail(reader_->Error()); }

  std::int32_t code_;
  std::unique_ptr<CReader> reader_;
};

// The same for writing: a file that leads to a database is left as it is.
class CDatabaseWriter final : public CWriter {
 public:
  explicit CDatabaseWriter(std::int32_t code) : code_(code) {}

  bool Begin(const std::string& name, const DICTIONARY& dictionary, std::int64_t cases) override {
    writer_ = LeadsToDatabase(name) ? WriteOdbcTable(code_) : WriteSqlScript(code_);
    return Done(writer_->Begin(name, dictionary, cases));
  }
  bool WriteRecord(const std::vector<OUT_CELL>& cells) override {
    return Done(writer_->WriteRecord(cells));
  }
  bool Finish() override { return Done(writer_ == nullptr || writer_->Finish()); }
  std::vector<std::string> Notes() const override { return writer_->Notes(); }

 private:
  bool Done(bool done) { return done || Fail(writer_->Error()); }

  std::int32_t code_;
  std::unique_ptr<CWriter> writer_;
};

}  // namespace

bool IsConnectionFile(std::string_view first) {
  if (first.substr(0, 3) == "\xEF\xBB\xBF") first.remove_prefix(3);
  const std::string_view text = Trimmed(first);
  return EqualIgnoringCase(text.substr(0, 6), "[ODBC]");
}

std::unique_ptr<CReader> ReadDatabase(std::int32_t code) {
  return std::make_unique<CDatabaseReader>(code);
}

std::unique_ptr<CWriter> WriteDatabase(std::int32_t code) {
  return std::make_unique<CDatabaseWriter>(code);
}

}  // namespace statrn32
