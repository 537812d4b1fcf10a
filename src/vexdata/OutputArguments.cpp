#include "vexdata/OutputArguments.h"

namespace {

constexpr const char* kGroup = "Output options";

CLI::Option* AddFile(CLI::App& command, const char* name, std::int32_t& save, CString& file,
                     const char* what) {
  const auto take = [&save, &file](const CString& text) {
    save = 1;
    file = text;
  };
  return command.add_option_function<CString>(name, take, CString("File for ") + what)
      ->group(kGroup);
}

CLI::Option* AddSwitch(CLI::App& command, const char* name, std::int32_t& value, const char* what) {
  const auto take = [&value](std::int64_t count) { value = count > 0 ? 1 : 0; };
  return command.add_flag_function(name, take, what)->group(kGroup);
}

CLI::Option* AddNumber(CLI::App& command, const char* name, std::int32_t& value, const char* what) {
  return command.add_option(name, value, what)->group(kGroup);
}

void AddMatrix(CLI::App& command, TRVOUSTRUCT& o) {
  const std::map<CString, std::int32_t> types = {{"CM", kCovariances},
                                                 {"KM", kCorrelations},
                                                 {"AM", kAugmentedMoments},
                                                 {"MM", kMomentsAboutZero}};
  CLI::Option* const type =
      command
          .add_option(
              "--matrix", o.nMatrixType,
              "CM covariances, KM correlations, AM augmented moments, MM moments about zero")
          ->transform(CLI::CheckedTransformer(types, CLI::ignore_case))
          ->group(kGroup);
  AddFile(command, "--save-matrix", o.bSaveMatrix, o.strMatrixFile, "the moment matrix")
      ->needs(type);
}

void AddAsymptotic(CLI::App& command, TRVOUSTRUCT& o) {
  CLI::Option* const covariances =
      AddFile(command, "--save-ac", o.bSaveAC, o.strACFile, "the asymptotic covariance matrix");
  CLI::Option* const variances =
      AddFile(command, "--save-av", o.bSaveAV, o.strAVFile, "the asymptotic variances");
  AddSwitch(command, "--print-ac", o.bPrintAC, "Print the asymptotic covariance matrix too")
      ->needs(covariances);
  AddSwitch(command, "--print-av", o.bPrintAV, "Print the asymptotic variances too")
      ->needs(variances);
}

// Width and decimals stand in the output line together or not at all, and only with the data.
void AddData(CLI::App& command, TRVOUSTRUCT& o) {
  constexpr std::int32_t kMostWidth = 32;
  constexpr std::int32_t kMostDecimals = 8;
  CLI::Option* const data =
      AddFile(command, "--save-data", o.bSaveData, o.strDataFile, "the transformed data");
  CLI::Option* const width = AddNumber(command, "--width", o.nWidth, "Width of its fields");
  CLI::Option* const decimals = AddNumber(command, "--decimals", o.nDecimals, "Its decimals");
  width->check(CLI::Range(std::int32_t{1}, kMostWidth))->needs(data)->needs(decimals);
  decimals->check(CLI::Range(std::int32_t{0}, kMostDecimals))->needs(data)->needs(width);
}

void AddRandom(CLI::App& command, TRVOUSTRUCT& o) {
  constexpr std::int32_t kMost = std::numeric_limits<std::int32_t>::max();
  constexpr std::int32_t kLeast = std::numeric_limits<std::int32_t>::min();
  const auto takeSeed = [&o](const std::int32_t& seed) {
    o.nSeedMode = 1;
    o.nSeed = seed;
  };
  command.add_option_function<std::int32_t>("--seed", takeSeed, "Seed of the random numbers")
      ->check(CLI::Range(kLeast, kMost))
      ->group(kGroup);
  AddNumber(command, "--repetitions", o.nRepetitions, "Number of repetitions")
      ->check(CLI::Range(std::int32_t{1}, kMost));
}

}  // namespace

void AddOutputArguments(CLI::App& command, TRVOUSTRUCT& options) {
  AddMatrix(command, options);
  AddFile(command, "--save-means", options.bSaveMeans, options.strMeansFile, "the means");
  AddFile(command, "--save-deviations", options.bSaveSD, options.strSDFile,
          "the standard deviations");
  AddAsymptotic(command, options);
  AddData(command, options);
  AddRandom(command, options);
  AddSwitch(command, "--wide", options.bWidePrint, "Print 132 columns");
  AddSwitch(command, "--bivariate-tables", options.bBivariateTables,
            "Print bivariate frequency tables");
  AddSwitch(command, "--bivariate-tests", options.bBivariateTests,
            "Print tests of underlying bivariate normality");
  AddSwitch(command, "--multivariate-tests", options.bMultivariateTests,
            "Perform tests of multivariate normality");
}

bool HasOutputArguments(const CLI::App& command) {
  const auto isOurs = [](const CLI::Option* option) { return option->get_group() == kGroup; };
  const auto options = command.get_options(isOurs);
  return std::any_of(options.begin(), options.end(),
                     [](const CLI::Option* option) { return option->count() > 0; });
}
