#include "syntax/OutputDialog.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <optional>

#include "host/Text.h"

namespace {

// One number that is edited as a text.
struct NumberField {
  CString OutputDialog::*text;
  std::int32_t TRVOUSTRUCT::*value;
  OutputEdit edit;
  std::int32_t lowest;
  std::int32_t highest;
};

constexpr std::int32_t kLowest = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t kHighest = std::numeric_limits<std::int32_t>::max();
constexpr NumberField kNumbers[] = {
    {&OutputDialog::seed, &TRVOUSTRUCT::nSeed, OutputEdit::Seed, kLowest, kHighest},
    {&OutputDialog::repetitions, &TRVOUSTRUCT::nRepetitions, OutputEdit::Repetitions, 1, kHighest},
    {&OutputDialog::width, &TRVOUSTRUCT::nWidth, OutputEdit::Width, 1, 32},
    {&OutputDialog::decimals, &TRVOUSTRUCT::nDecimals, OutputEdit::Decimals, 0, 8},
};

std::optional<std::int32_t> ReadInteger(std::string_view text) {
  text = Trimmed(text);
  if (text.size() > 1 && text[0] == '+' && text[1] != '-') text.remove_prefix(1);
  std::int32_t number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return number;
}

void ApplyTests(OutputDialog& dialog, int tests) {
  dialog.enabled.bivariateTables = tests != kTestsContinuous;
  dialog.enabled.bivariateTests = tests != kTestsContinuous;
  dialog.enabled.multivariateTests = tests != kTestsWithOrdinal;
  // Opening the dialog turns this test on wherever it applies, whatever was chosen before.
  dialog.values.bBivariateTests = dialog.enabled.bivariateTests ? 1 : 0;
}

void ApplyMatrixRule(OutputDialog& dialog) {
  if (dialog.selection < 0) return;
  const bool forCovariances = dialog.mode == kOutputHomogeneity || dialog.mode == kOutputProbit;
  dialog.enabled.asymptotic =
      dialog.mode != kOutputWithoutData && (!forCovariances || dialog.selection == kCovariances);
}

void ApplySaveBoxRule(OutputDialog& dialog, SaveBox box) {
  dialog.enabled.file[static_cast<std::size_t>(box)] = dialog.values.*FieldsOf(box).checked != 0;
}

CString RangeMessage(const NumberField& number) {
  return "Please enter a whole number between " + std::to_string(number.lowest) + " and " +
         std::to_string(number.highest) + ".";
}

// Reads the four numbers into `values`; what to say about the first that is none.
std::optional<OutputOkResult> ReadNumbers(const OutputDialog& dialog, TRVOUSTRUCT& values) {
  for (const NumberField& number : kNumbers) {
    const auto value = ReadInteger(dialog.*number.text);
    if (!value || *value < number.lowest || *value > number.highest) {
      return OutputOkResult{false, RangeMessage(number), {}, number.edit};
    }
    values.*number.value = *value;
  }
  return std::nullopt;
}

}  // namespace

SaveFields FieldsOf(SaveBox box) {
  switch (box) {
    case SaveBox::Matrix:
      return {&TRVOUSTRUCT::bSaveMatrix, &TRVOUSTRUCT::strMatrixFile, OutputEdit::MatrixFile};
    case SaveBox::Means:
      return {&TRVOUSTRUCT::bSaveMeans, &TRVOUSTRUCT::strMeansFile, OutputEdit::MeansFile};
    case SaveBox::Deviations:
      return {&TRVOUSTRUCT::bSaveSD, &TRVOUSTRUCT::strSDFile, OutputEdit::DeviationsFile};
    case SaveBox::AsymptoticCovariances:
      return {&TRVOUSTRUCT::bSaveAC, &TRVOUSTRUCT::strACFile,
              OutputEdit::AsymptoticCovariancesFile};
    case SaveBox::AsymptoticVariances:
      break;
  }
  return {&TRVOUSTRUCT::bSaveAV, &TRVOUSTRUCT::strAVFile, OutputEdit::AsymptoticVariancesFile};
}

int TestsFor(const TORVIKSTRUCT& data, std::span<const std::int32_t> chosen) {
  const auto isOrdinal = [&](std::int32_t number) {
    return IsVariableNumber(data, number) &&
           data.variable[static_cast<std::size_t>(number) - 1].type == kOrdinal;
  };
  bool ordinal = std::any_of(chosen.begin(), chosen.end(), isOrdinal);
  for (std::int32_t number = 1; chosen.empty() && number <= data.variables; ++number) {
    ordinal = ordinal || isOrdinal(number);
  }
  return ordinal ? kTestsWithOrdinal : kTestsContinuous;
}

OutputDialog OpenOutputDialog(const TRVOUSTRUCT& options, int mode, int tests) {
  OutputDialog dialog;
  dialog.values = options;
  const bool isItem = options.nMatrixType >= 0 && options.nMatrixType <= kNoMatrix;
  dialog.selection = isItem ? options.nMatrixType : kNoMatrixSelected;
  dialog.mode = mode;
  for (const NumberField& number : kNumbers) {
    dialog.*number.text = std::to_string(options.*number.value);
  }
  dialog.enabled.data = mode != kOutputWithoutData;
  ApplyTests(dialog, tests);
  ApplyMatrixRule(dialog);
  for (const SaveBox box : kSaveBoxes) ApplySaveBoxRule(dialog, box);
  return dialog;
}

void OnMatrixSelected(OutputDialog& dialog, int selection) {
  dialog.selection = selection;
  ApplyMatrixRule(dialog);
}

OutputEdit OnSaveBoxClicked(OutputDialog& dialog, SaveBox box, bool checked) {
  const SaveFields fields = FieldsOf(box);
  dialog.values.*fields.checked = checked ? 1 : 0;
  ApplySaveBoxRule(dialog, box);
  return checked ? fields.edit : OutputEdit::None;
}

OutputOkResult OnOutputOk(const OutputDialog& dialog, TRVOUSTRUCT& options) {
  options.nMatrixType = dialog.selection;
  for (const SaveBox box : kSaveBoxes) {
    const SaveFields fields = FieldsOf(box);
    if (dialog.values.*fields.checked == 0 || !(dialog.values.*fields.file).empty()) continue;
    return {false, "Please enter the file name for the saved data.", "Missing File Name",
            fields.edit};
  }
  TRVOUSTRUCT taken = dialog.values;
  if (const auto problem = ReadNumbers(dialog, taken)) return *problem;
  taken.nMatrixType = dialog.selection;
  options = taken;
  return {true, {}, {}, OutputEdit::None};
}
