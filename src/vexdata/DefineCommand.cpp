// The command that changes what variables are: names, types, missing values, categories, and which
// of them is the weight or group variable.
#include <algorithm>
#include <charconv>
#include <iterator>

#include "host/Host.h"
#include "host/Numbers.h"
#include "host/Text.h"
#include "vexdata/CommandLine.h"
#include "vexdata/Commands.h"
#include "vexdata/EditedFile.h"

namespace {

constexpr std::size_t kNameBytes = 16;
constexpr std::size_t kLabelBytes = 8;
constexpr const char* kNone = "none";

bool Refuse(const CString& text) {
  AfxMessageBox(text);
  return false;
}

// The entries of a list between commas.
std::vector<std::string_view> Entries(std::string_view list) {
  std::vector<std::string_view> entries;
  for (;;) {
    const std::size_t comma = std::min(list.find(','), list.size());
    entries.push_back(Trimmed(list.substr(0, comma)));
    if (comma == list.size()) return entries;
    list.remove_prefix(comma + 1);
  }
}

std::optional<double> WholeNumberText(std::string_view text) {
  text = Trimmed(text);
  const auto number = ParseNumber(text);
  if (!number || number->length != text.size()) return std::nullopt;
  return number->value;
}

// "9", "90 to 99"; up to three values and one range.
bool ParseMissing(const CString& list, MissingDefinition& missing) {
  missing = kNoMissing;
  if (list == kNone) return true;
  std::size_t values = 0;
  for (const std::string_view entry : Entries(list)) {
    const std::size_t to = entry.find(" to ");
    const auto first = WholeNumberText(entry.substr(0, to));
    const auto last = to == CString::npos ? first : WholeNumberText(entry.substr(to + 4));
    if (!first || !last) {
      return Refuse("--missing: expected numbers such as 9,99 or 90 to 98, not " + CString(entry));
    }
    const bool again =
        to == CString::npos ? values == kMissingValues : missing[kRangeLow] != kNotSet;
    if (again) return Refuse("--missing: at most three values and one range");
    if (to == CString::npos) {
      missing[values++] = *first;
    } else {
      missing[kRangeLow] = *first;
      missing[kRangeHigh] = *last;
    }
  }
  return true;
}

struct Category {
  std::int32_t value = 0;
  CString label;
};

bool ParseCategories(const CString& list, std::vector<Category>& categories) {
  if (list == kNone) return true;
  for (const std::string_view entry : Entries(list)) {
    const std::size_t equals = std::min(entry.find('='), entry.size());
    const std::string_view text = Trimmed(entry.substr(0, equals));
    Category category;
    const auto result = std::from_chars(text.data(), text.data() + text.size(), category.value);
    if (result.ec != std::errc() || result.ptr != text.data() + text.size() ||
        equals == entry.size()) {
      return Refuse("--categories: expected entries such as 1=low, not " + CString(entry));
    }
    category.label = TextForFile(Trimmed(entry.substr(equals + 1)));
    if (category.label.size() > kLabelBytes) {
      return Refuse("--categories: a label has at most 8 characters, not " + CString(entry));
    }
    categories.push_back(std::move(category));
  }
  if (categories.size() <= kCategorySlots) return true;
  return Refuse("An ordinal variable cannot have more than 15 categories!");
}

void SetCategories(TORVIKSTRUCT& data, std::size_t index, const std::vector<Category>& categories) {
  data.variable[index].categories = static_cast<std::int32_t>(categories.size());
  for (std::size_t i = 0; i < categories.size(); ++i) {
    data.categoryValues[index * kCategorySlots + i] = categories[i].value;
    data.categoryLabels[index * kCategorySlots + i] = categories[i].label;
  }
}

bool ChangeDefinitions(const DefineOptions& options, const std::vector<std::int32_t>& variables,
                       TORVIKSTRUCT& data) {
  MissingDefinition missing{};
  std::vector<Category> categories;
  if (!options.missing.empty() && !ParseMissing(options.missing, missing)) return false;
  if (!options.categories.empty() && !ParseCategories(options.categories, categories)) return false;
  for (const std::int32_t variable : variables) {
    const auto index = static_cast<std::size_t>(variable);
    if (!options.rename.empty()) {
      data.variable[index].name = CutText(TextForFile(options.rename), kNameBytes);
    }
    if (!options.type.empty()) {
      const auto* const type =
          std::find(std::begin(kVariableTypes), std::end(kVariableTypes), options.type);
      data.variable[index].type = static_cast<std::int32_t>(type - std::begin(kVariableTypes));
    }
    if (!options.missing.empty()) data.variable[index].missing = missing;
    if (!options.categories.empty()) SetCategories(data, index, categories);
  }
  return true;
}

}  // namespace

int DefineVariables(const DefineOptions& options) {
  CEditedFile file;
  if (!file.Open(options.target)) return kExitFailed;
  const auto variables = file.FindVariables(options.variables, "VARIABLES");
  if (!variables) return kExitFailed;
  const bool ofOne = !options.rename.empty() || options.weight || options.group;
  if (ofOne && variables->size() != 1) {
    AfxMessageBox("--rename, --weight and --group take one variable, not " + options.variables);
    return kExitFailed;
  }
  std::int32_t capacity = 0;
  const auto copy = file.Document().GetTorvikCopy(capacity, 0);
  if (!copy || !ChangeDefinitions(options, *variables, *copy)) return kExitFailed;
  if (options.weight) copy->weightVariable = variables->front() + 1;
  if (!file.View().UpdateDefinition(*copy)) return kExitFailed;
  if (options.group) file.Document().SetGroupVariable(variables->front() + 1);
  return file.Save();
}
