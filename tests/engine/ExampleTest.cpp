// The shipped survey from the import to the output, against values of general statistics software
// (R 4.2.2; thresholds by qnorm, correlations by an independent two-step program converged to
// gradients below 1e-12).
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "engine/EngineData.h"
#include "vexdata/CommandLine.h"

namespace {

using testing::HasSubstr;
using testing::Not;

class ExampleTest : public EngineTest {
 protected:
  void SetUp() override {
    const std::string target = folder / "DATA.VSF";
    const char* const arguments[] = {"vexdata", "--quiet", "import", VEX_EXAMPLE, target.c_str()};
    ASSERT_EQ(RunCommandLine(5, arguments), kExitDone);
  }
};

TEST_F(ExampleTest, AgreesWithIndependentValues) {
  ASSERT_EQ(Run("SE A1-A5 C1-C5\nOU MA=KM XM WI=12 ND=8", 2), ERUNRESULT::Done) << Output();
  const std::string output = Output();
  EXPECT_THAT(output, HasSubstr("Cases used                     2632"));
  // Thresholds of A1; correlation, chi-square, degrees of freedom and RMSEA of A1 and A2.
  for (const char* value :
       {"-0.43945160", "0.32164669", "0.73429994", "1.22960519", "1.88057030", "-0.41017778",
        "181.75629879", "0.04997408", "-0.32390120", "129.10528005"}) {
    EXPECT_THAT(output, HasSubstr(value));
  }
}

// Two factors of five items lead to where quadrature of the likelihood is no longer exact: the
// estimation gives up long before its last step.
TEST_F(ExampleTest, EndsNearAHeywoodCaseWithAMessage) {
  EXPECT_EQ(Run("SE A1-A5\nOFA NOR NF=2\nOU", 2), ERUNRESULT::Failed);
  const std::string output = UnwrappedOutput();
  EXPECT_THAT(output, HasSubstr("The estimation has not come to its end."));
  EXPECT_THAT(output, HasSubstr("Heywood case: the factors explain variable A2 to 0.99"));
  EXPECT_THAT(output, HasSubstr("Remedy: Ask for fewer factors (NF), leave the variable out"));
}

TEST_F(ExampleTest, TreatsItemsAsContinuousWhenAsked) {
  ASSERT_EQ(Run("SE A1-A5 C1-C5\nCO 1-10\nOU WI=12 ND=8", 2), ERUNRESULT::Done) << Output();
  const std::string output = Output();
  // Mean, standard deviation, skewness and kurtosis of A1 and their tests; the multivariate tests.
  for (const char* value : {"2.41451368", "1.40866159", "0.82869491", "-0.29908903", "15.30862036",
                            "-3.63817129", "247.59014757", "8.71690669", "3823.81639934",
                            "143.51094593", "38.92937476", "1.19592455"}) {
    EXPECT_THAT(output, HasSubstr(value));
  }
}

}  // namespace
