#include <functional>

#include <gtest/gtest.h>

#include "datadoc/DataDoc.h"

TEST(OutputLine, WritesItsPartsInTheirOrder) {
  using Change = std::function<void(TRVOUSTRUCT&)>;
  const auto everything = [](TRVOUSTRUCT& o) {
    o.nMatrixType = 3;
    o.bSaveMatrix = o.bSaveData = o.bSaveMeans = o.bSaveSD = o.bSaveAC = o.bSaveAV = 1;
    o.bPrintAC = o.bPrintAV = o.bPK = o.bWidePrint = o.bBivariateTables = 1;
    o.nSeedMode = 1;
    o.nRepetitions = 50;
    o.nWidth = 10;
    o.nDecimals = 3;
    o.strMatrixFile = "m.mm", o.strDataFile = "my data.dat", o.strMeansFile = "me";
    o.strSDFile = "sd", o.strACFile = "a.ac", o.strAVFile = "a.av";
  };
  const auto data = [](int width, int decimals) {
    return [=](TRVOUSTRUCT& o) {
      o.bSaveData = 1, o.strDataFile = "d", o.nWidth = width, o.nDecimals = decimals;
    };
  };
  const auto matrix = [](int type) {
    return [=](TRVOUSTRUCT& o) { o.nMatrixType = type, o.bSaveMatrix = 1, o.strMatrixFile = "m"; };
  };
  const struct {
    const char* what;
    Change change;
    int withData;
    const char* line;
  } cases[] = {
      {"defaults", [](TRVOUSTRUCT&) {}, 1, "OU XT XM "},
      {"everything", everything, 1,
       "OU MA=MM SM=m.mm RA=my data.dat WI=10 ND=3 ME=me SD=sd IX=123456 RP=50 AC=a.ac PA AV=a.av "
       "PV PK WP BT XT XM "},
      {"everything but the data", everything, 0,
       "OU MA=MM SM=m.mm ME=me SD=sd IX=123456 RP=50 AC=a.ac PA AV=a.av PV PK WP BT XT XM "},
      {"both tests", [](TRVOUSTRUCT& o) { o.bBivariateTests = o.bMultivariateTests = 1; }, 1,
       "OU "},
      {"covariances", matrix(0), 1, "OU MA=CM SM=m XT XM "},
      {"correlations", matrix(1), 1, "OU MA=KM SM=m XT XM "},
      {"augmented", matrix(2), 1, "OU MA=AM SM=m XT XM "},
      {"none selected", matrix(4), 1, "OU XT XM "},
      {"no item", matrix(-1), 1, "OU XT XM "},
      {"matrix not saved", [](TRVOUSTRUCT& o) { o.nMatrixType = 0, o.strMatrixFile = "m"; }, 1,
       "OU MA=CM XT XM "},
      {"default width and decimals", data(15, 6), 1, "OU RA=d XT XM "},
      {"width alone", data(10, 6), 1, "OU RA=d XT XM "},
      {"decimals alone", data(15, 3), 1, "OU RA=d XT XM "},
      {"width and decimals", data(10, 3), 1, "OU RA=d WI=10 ND=3 XT XM "},
      {"width without data", [](TRVOUSTRUCT& o) { o.nWidth = 10, o.nDecimals = 3; }, 1,
       "OU XT XM "},
      {"one repetition", [](TRVOUSTRUCT& o) { o.nRepetitions = 1; }, 1, "OU XT XM "},
      {"seed", [](TRVOUSTRUCT& o) { o.nSeedMode = 1, o.nSeed = -7; }, 1, "OU IX=-7 XT XM "},
      {"printed but not saved", [](TRVOUSTRUCT& o) { o.bPrintAC = o.bPrintAV = 1; }, 1,
       "OU XT XM "},
      {"empty file name", [](TRVOUSTRUCT& o) { o.bSaveMeans = 1; }, 1, "OU ME= XT XM "},
  };
  CDataDoc document;
  for (const auto& c : cases) {
    TRVOUSTRUCT options;
    c.change(options);
    CString line = "replaced";
    document.GetOUString(&options, line, c.withData);
    EXPECT_EQ(line, c.line) << c.what;
  }
}
