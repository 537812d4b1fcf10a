// A dictionary, and the data in a file beside it. Numbers stand with all their digits in fields of
// 24 columns; a missing value is a blank field.
#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <filesystem>

#include "host/statrn32.h"
#include "statrn32/FileWriter.h"
#include "statrn32/Formats.h"
#include "statrn32/OsirisFiles.h"
#include "vexutils/SideFile.h"

namespace statrn32 {
namespace {

constexpr std::size_t kNumberBytes = 24;  // of the longest shortest text of a double
constexpr std::size_t kCardBytes = 80;
constexpr std::size_t kMostRecordBytes = 99'999;
constexpr std::size_t kNameBytes = 24;
constexpr std::size_t kTextBytes = 240;

std::size_t WidthOf(const VARIABLE& variable) {
  if (variable.type != ST_TYPE_STRING) return kNumberBytes;
  return static_cast<std::size_t>(std::max(1, variable.width));
}

class COsirisWriter final : public CFileWriter {
 public:
  COsirisWriter() : CFileWriter(36) {}

 protected:
  bool Create() override;
  bool PutHeader() override;
  bool PutRecord(const std::vector<OUT_CELL>& cells) override;
  bool Close() override;

 private:
  bool PutCard(std::string card);

  CSideFile side_;
  COutputFile data_;
  std::string record_;
};

bool COsirisWriter::Create() {
  namespace fs = std::filesystem;
  const std::string dictionary = FinalName().empty() ? Name() : FinalName();
  const std::string data = fs::path(dictionary).replace_extension("dat").string();
  std::error_code failed;
  // A file of that name which no dictionary owns is somebody else's.
  if (fs::exists(data, failed) && !fs::exists(dictionary, failed)) {
    return FailFile("its data would replace the file " + data + "; please choose another name");
  }
  if (!CFileWriter::Create()) return false;
  if (!side_.Create(data)) return FailFile(data + ": cannot be created: " + side_.ErrorText());
  return data_.Create(side_.Path()) || FailFile(data + ": cannot be created: " + data_.Reason());
}

bool COsirisWriter::PutCard(std::string card) {
  card.resize(kCardBytes, ' ');
  return Put(card + '\n');
}

bool COsirisWriter::PutHeader() {
  std::array<char, kCardBytes + 1> card;
  std::snprintf(card.data(), card.size(), "1    %4d %4d", 1, static_cast<int>(Variables().size()));
  if (!PutCard(card.data())) return false;
  std::size_t begin = 1;
  int number = 1;
  for (const VARIABLE& variable : Variables()) {
    const std::size_t width = WidthOf(variable);
    if (begin + width > kMostRecordBytes) {
      return FailFile("a record would take more than 99999 columns");
    }
    const char kind = variable.type == ST_TYPE_STRING ? '1' : '0';
    std::snprintf(card.data(), card.size(), "T%5d %c   %-24.24s%5d %5d 0     1", number++, kind,
                  variable.name.c_str(), static_cast<int>(begin), static_cast<int>(width));
    if (!PutCard(card.data())) return false;
    begin += width;
  }
  return true;
}

bool COsirisWriter::PutRecord(const std::vector<OUT_CELL>& cells) {
  record_.clear();
  for (std::size_t i = 0; i < cells.size(); ++i) {
    const std::size_t end = record_.size() + WidthOf(Variables()[i]);
    if (Variables()[i].type == ST_TYPE_STRING) {
      if (!cells[i].missing) record_ += ToAscii(cells[i].text);
    } else if (!cells[i].missing && !std::isnan(cells[i].number)) {
      std::array<char, kNumberBytes> text;
      const char* const stop =
          std::to_chars(text.data(), text.data() + text.size(), cells[i].number).ptr;
      const auto bytes = static_cast<std::size_t>(stop - text.data());
      record_.append(kNumberBytes - bytes, ' ').append(text.data(), bytes);
    }
    record_.resize(end, ' ');
  }
  std::replace_if(
      record_.begin(), record_.end(), [](char c) { return c == '\n' || c == '\r'; }, ' ');
  record_ += '\n';
  return data_.Write(record_.data(), record_.size()) || FailFile(data_.Reason());
}

// The data take their place before the dictionary that speaks of them does.
bool COsirisWriter::Close() {
  if (!CFileWriter::Close()) return false;
  if (!Error().empty()) return false;
  if (!data_.Close()) return FailFile(data_.Reason());
  return side_.Commit() || FailFile(side_.Target() + ": " + side_.ErrorText());
}

}  // namespace

constexpr NAME_RULES kOsirisNames = {kNameBytes,
                                     " !#$%&()*+,-./:;<=>?@[]^_{|}~'0123456789",
                                     " !#$%&()*+,-./:;<=>?@[]^_{|}~'",
                                     true,
                                     false,
                                     false,
                                     {}};
constexpr LIMITS kOsirisLimits = {
    .variables = 4000,
    .textBytes = kTextBytes,
    .remark = "The data go into a file of the same name with .dat beside the dictionary.",
    .textRemark =
        "Letters outside ASCII become the nearest ones; an empty text and a missing one "
        "are the same."};

std::unique_ptr<CWriter> WriteOsiris() {
  return std::make_unique<COsirisWriter>();
}

}  // namespace statrn32
