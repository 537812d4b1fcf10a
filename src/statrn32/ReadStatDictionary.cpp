#include "statrn32/ReadStatDictionary.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <new>

#include "host/statrn32.h"

namespace statrn32 {
namespace {

constexpr int kDefaultNumberWidth = 8;
constexpr int kLargestWidth = 32767;
constexpr int kLargestDecimals = 40;

// Tags are told in lower case; SAS has them in upper case.
char LowerTag(char tag) {
  return tag >= 'A' && tag <= 'Z' ? static_cast<char>(tag - 'A' + 'a') : tag;
}

double NumberOf(const readstat_value_t& value) {
  const double number = readstat_double_value(value);
  return std::isnan(number) ? 0 : number;
}

int DefaultWidth(DATE_KIND date) {
  switch (DisplayOf(date)) {
    case ST_DISPLAY_DATE:
      return 10;
    case ST_DISPLAY_DATETIME:
      return 19;
    default:
      return kDefaultNumberWidth;
  }
}

void SetWidth(const readstat_variable_t& variable, VARIABLE* out) {
  const FORMAT_PARTS parts = SplitFormat(variable.format);
  int width = parts.width;
  if (width <= 0) width = variable.display_width;
  if (width <= 0 && out->type == ST_TYPE_STRING) {
    width = static_cast<int>(std::min<std::size_t>(variable.storage_width, kLargestWidth));
  }
  if (width <= 0) width = DefaultWidth(out->date);
  out->width = std::min(width, kLargestWidth);
  if (out->type == ST_TYPE_NUMERIC && parts.decimals > 0) {
    out->decimals = std::min(parts.decimals, kLargestDecimals);
  }
}

}  // namespace

bool CDictionaryPass::Run(DICTIONARY* out) {
  if (!Parse(out)) return false;
  for (std::size_t i = 0; i < out->variables.size(); ++i) {
    if (!setNames_[i].empty()) out->variables[i].labelSet = FindSet(setNames_[i]);
  }
  return true;
}

void CDictionaryPass::RunLabels(DICTIONARY* out) {
  const std::size_t before = out->labelSets.size();
  if (Parse(out)) return;
  out->labelSets.resize(before);
  sets_.clear();
}

int CDictionaryPass::FindSet(const std::string& name) const {
  const auto found = sets_.find(name);
  return found == sets_.end() ? -1 : found->second;
}

bool CDictionaryPass::Parse(DICTIONARY* out) {
  out_ = out;
  ChooseEncoding(nullptr, 0);
  const PARSER parser = MakeParser(input_);
  if (!parser) {
    result_.code = READSTAT_ERROR_MALLOC;
    return false;
  }
  readstat_set_metadata_handler(parser.get(), OnMetadata);
  readstat_set_variable_handler(parser.get(), OnVariable);
  readstat_set_value_label_handler(parser.get(), OnLabel);
  readstat_set_error_handler(parser.get(), OnError);
  result_.code = format_.parse(parser.get(), "", this);
  result_.position = input_->Position();
  return result_.code == READSTAT_OK || (complete_ && result_.refusal.empty());
}

int CDictionaryPass::Refuse(std::string reason) {
  result_.refusal = std::move(reason);
  return READSTAT_HANDLER_ABORT;
}

int CDictionaryPass::OnMetadata(readstat_metadata_t* metadata, void* context) {
  auto& pass = *static_cast<CDictionaryPass*>(context);
  try {
    return pass.TakeMetadata(metadata);
  } catch (const std::bad_alloc&) {
    return READSTAT_HANDLER_ABORT;
  }
}

int CDictionaryPass::OnVariable(int /*index*/, readstat_variable_t* variable, const char* labels,
                                void* context) {
  auto& pass = *static_cast<CDictionaryPass*>(context);
  try {
    return pass.TakeVariable(*variable, labels);
  } catch (const std::bad_alloc&) {
    return READSTAT_HANDLER_ABORT;
  }
}

int CDictionaryPass::OnLabel(const char* set, readstat_value_t value, const char* label,
                             void* context) {
  auto& pass = *static_cast<CDictionaryPass*>(context);
  try {
    return pass.TakeLabel(set, value, label);
  } catch (const std::bad_alloc&) {
    return READSTAT_HANDLER_ABORT;
  }
}

void CDictionaryPass::OnError(const char* message, void* context) {
  if (message != nullptr) static_cast<CDictionaryPass*>(context)->result_.detail = message;
}

// A choice holds where the file says nothing.
void CDictionaryPass::ChooseEncoding(const char* named, std::int64_t version) {
  const bool utf8 = format_.utf8Version > 0 && version >= format_.utf8Version;
  if (format_.encoding != nullptr) {
    encoding_ = format_.encoding;
  } else if (named != nullptr) {
    encoding_ = named;
  }
  if (encoding_.empty() && !utf8) encoding_ = chosen_;
  decoder_.SetEncoding(encoding_.c_str());
}

int CDictionaryPass::TakeMetadata(readstat_metadata_t* metadata) {
  out_->cases = metadata->row_count;
  expected_ = metadata->var_count;
  if (format_.setNameBytes != nullptr) {
    setNameBytes_ = format_.setNameBytes(metadata->file_format_version);
  }
  ChooseEncoding(metadata->file_encoding, metadata->file_format_version);
  const std::int64_t room = input_->Size() / format_.bytesPerVariable;
  if (expected_ > kMaxVariables || expected_ > room) {
    return Refuse("the header tells of " + std::to_string(expected_) +
                  " variables, which the file has no room for");
  }
  return READSTAT_HANDLER_OK;
}

std::string CDictionaryPass::SetName(const char* name) const {
  if (name == nullptr) return {};
  return {name, setNameBytes_ > 0 ? strnlen(name, setNameBytes_) : std::strlen(name)};
}

int CDictionaryPass::TakeVariable(const readstat_variable_t& variable, const char* labels) {
  out_->variables.push_back(MakeVariable(variable));
  setNames_.push_back(SetName(labels));
  const auto count = static_cast<std::int64_t>(out_->variables.size());
  if (count > kMaxVariables) return Refuse("the file has too many variables");
  complete_ = !format_.labelsInFile && count == expected_;
  return complete_ ? READSTAT_HANDLER_ABORT : READSTAT_HANDLER_OK;
}

VARIABLE CDictionaryPass::MakeVariable(const readstat_variable_t& variable) {
  VARIABLE out;
  out.name = decoder_.Decode(variable.name);
  out.label = decoder_.Decode(variable.label);
  const bool text = readstat_variable_get_type_class(&variable) == READSTAT_TYPE_CLASS_STRING;
  out.type = text ? ST_TYPE_STRING : ST_TYPE_NUMERIC;
  if (!text) out.date = format_.dateKind(variable.format);
  if (out.date != DATE_KIND::None) out.type = ST_TYPE_DATE;
  SetWidth(variable, &out);
  const int ranges = readstat_variable_get_missing_ranges_count(&variable);
  for (int i = 0; i < ranges; ++i) {
    const readstat_value_t low = readstat_variable_get_missing_range_lo(&variable, i);
    const readstat_value_t high = readstat_variable_get_missing_range_hi(&variable, i);
    MISSING_RANGE range;
    if (text) {
      if (low.v.string_value == nullptr || high.v.string_value == nullptr) continue;
      range.lowText = decoder_.Decode(low.v.string_value);
      range.highText = decoder_.Decode(high.v.string_value);
    } else {
      range.low = readstat_double_value(low);
      range.high = readstat_double_value(high);
    }
    out.missing.push_back(std::move(range));
  }
  return out;
}

int CDictionaryPass::TakeLabel(const char* set, const readstat_value_t& value, const char* label) {
  VALUE_LABEL entry;
  if (label != nullptr) entry.label = decoder_.Decode(label);
  if (value.type == READSTAT_TYPE_STRING) {
    entry.isText = true;
    if (value.v.string_value != nullptr) entry.text = decoder_.Decode(value.v.string_value);
  } else {
    entry.tag = LowerTag(value.tag);
    if (entry.tag == 0) entry.number = NumberOf(value);
  }
  // Labels of a sound file do not overlap, so together they are no longer than the file (in another
  // encoding).
  labelBytes_ += static_cast<std::int64_t>(entry.label.size() + entry.text.size());
  if (labelBytes_ > 4 * input_->Size()) {
    return Refuse("the file is damaged: its value labels are longer than the file");
  }
  const auto [place, added] =
      sets_.try_emplace(SetName(set), static_cast<int>(out_->labelSets.size()));
  if (added) out_->labelSets.emplace_back();
  out_->labelSets[static_cast<std::size_t>(place->second)].push_back(std::move(entry));
  return READSTAT_HANDLER_OK;
}

}  // namespace statrn32
