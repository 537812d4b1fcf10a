#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "engine/EngineData.h"
#include "engine/syntax/Syntax.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;

// Six variables: A1 to A4, "lo-hi" and a name that looks like a number.
TORVIKSTRUCT SixVariables() {
  return Describe({"A1", "A2", "A3", "A4", "lo-hi", "3"}, kOrdinal);
}

JOB Parsed(const std::string& lines) {
  JOB job;
  FAULT fault;
  EXPECT_TRUE(ParseCommands(SplitSyntax(lines), SixVariables(), job, fault))
      << lines << ": " << fault.cause;
  return job;
}

template <typename Procedure>
Procedure Only(const std::string& line) {
  const JOB job = Parsed(line + "\nOU\n");
  if (job.procedures.size() != 1) {
    ADD_FAILURE() << line;
    return {};
  }
  const auto* const found = std::get_if<Procedure>(&job.procedures.front().what);
  EXPECT_NE(found, nullptr) << line;
  return found != nullptr ? *found : Procedure();
}

TEST(Commands, SelectVariablesByNumberNameAndRange) {
  struct {
    const char* lines;
    std::vector<std::int32_t> want;  // counted from 1
  } const cases[] = {
      {"OU", {}},
      {"SE 1 2 \nOU", {1, 2}},
      {"se A4 2\nSE 6\nou", {4, 2, 6}},
      {"SE 2-4\nOU", {2, 3, 4}},
      {"SE A1-A3 lo-hi\nOU", {1, 2, 3, 5}},
      {"SE A3-lo-hi\nOU", {3, 4, 5}},
      {"SE 3\nOU", {3}},  // a number, whatever the variables are called
      {"SE\t1\t 2\nOU", {1, 2}},
  };
  for (const auto& c : cases) {
    std::vector<std::int32_t> found;
    for (const std::int32_t variable : Parsed(c.lines).selected) found.push_back(variable + 1);
    EXPECT_EQ(found, c.want) << c.lines;
  }
}

TEST(Commands, ChangeTypes) {
  const JOB job = Parsed("OR 1\nCO 2\nCA 3\nCB 4\nCE 5\nFI 6\nCO 1\nOU");
  const std::int32_t want[] = {kContinuous,    kContinuous,   kCensoredAbove,
                               kCensoredBelow, kCensoredBoth, kFixed};
  for (std::size_t i = 0; i < 6; ++i) EXPECT_EQ(job.data.variable[i].type, want[i]) << i;
}

TEST(Commands, ReadFactorAnalyses) {
  const auto fa = Only<FACTORANALYSIS>("FA NF=2 MR FS");
  EXPECT_EQ(fa.factors, 2);
  EXPECT_TRUE(fa.minres);
  EXPECT_TRUE(fa.scores);
  EXPECT_EQ(Only<FACTORANALYSIS>("FA").factors, 0);
  EXPECT_FALSE(Only<FACTORANALYSIS>("FA NF= 12").minres);
  EXPECT_TRUE(Only<ORDINALFACTORANALYSIS>("OFA POM NF=1").proportionalOdds);
  EXPECT_FALSE(Only<ORDINALFACTORANALYSIS>("OFA NOR").proportionalOdds);
  const auto pc = Only<PRINCIPALCOMPONENTS>("PC NC=3 KM PS");
  EXPECT_EQ(pc.components, 3);
  EXPECT_TRUE(pc.ofCorrelations);
  EXPECT_TRUE(pc.scores);
}

TEST(Commands, ReadThresholdProcedures) {
  EXPECT_EQ(Only<HOMOGENEITY>("HT 2 A4").second, 3);
  EXPECT_THAT(Only<EQUALTHRESHOLDS>("ET 1 3").variables, ElementsAre(0, 2));
  EXPECT_THAT(Only<MARGINALTHRESHOLDS>("MT 1-2").variables, ElementsAre(0, 1));
  EXPECT_THAT(Only<NORMALSCORES>("NS 4").variables, ElementsAre(3));
  EXPECT_EQ(Parsed("FT 2\nFT 3\nOU TH=t.txt").procedures.size(), 2U);
}

TEST(Commands, ReadImputations) {
  const auto impute = Only<IMPUTATION>("IMPUTE (1 2 ) (3 4 )  VR=0.700000 XN");
  EXPECT_THAT(impute.imputed, ElementsAre(0, 1));
  EXPECT_THAT(impute.matching, ElementsAre(2, 3));
  EXPECT_EQ(impute.varianceRatio, 0.7);
  EXPECT_EQ(impute.listing, IMPUTATION::Listing::Successful);
  EXPECT_EQ(Only<IMPUTATION>("impute (1)(2)").varianceRatio, 0.5);
  const auto em = Only<MULTIPLEIMPUTATION>("EM 1-3 IT=100 CC=0.0001 TC=2");
  EXPECT_EQ(em.iterations, 100);
  EXPECT_EQ(em.convergence, 0.0001);
  EXPECT_EQ(em.allMissing, MULTIPLEIMPUTATION::AllMissing::Leave);
  const auto mc = Only<MULTIPLEIMPUTATION>("MC 1 2 RP=5");
  EXPECT_TRUE(mc.mcmc);
  EXPECT_EQ(mc.dataSets, 5);
}

TEST(Commands, ReadRegressions) {
  struct {
    const char* line;
    REGRESSION::Method method;
    std::size_t y, x, instruments;
    bool alternative;
  } const cases[] = {
      {"RG 1 2 ON 3", REGRESSION::Method::LeastSquares, 2, 1, 0, false},
      {"TS 1 ON 2 3 WITH 3 4 5", REGRESSION::Method::TwoStage, 1, 2, 3, false},
      {"PR 1 ON 2-3 AP", REGRESSION::Method::Probit, 1, 2, 0, true},
      {"LO 1 on 2", REGRESSION::Method::Logistic, 1, 1, 0, false},
      {"CR 1 ON 2 3", REGRESSION::Method::Censored, 1, 2, 0, false},
  };
  for (const auto& c : cases) {
    const auto found = Only<REGRESSION>(c.line);
    EXPECT_EQ(found.method, c.method) << c.line;
    EXPECT_EQ(found.y.size(), c.y) << c.line;
    EXPECT_EQ(found.x.size(), c.x) << c.line;
    EXPECT_EQ(found.instruments.size(), c.instruments) << c.line;
    EXPECT_EQ(found.alternativeParameters, c.alternative) << c.line;
  }
}

TEST(OutputLine, ReadsEveryKeyword) {
  const OUTPUTLINE all = Parsed(
                             "OU MA=KM SM=my file.cm RA=new.VSF WI=10 ND=3 ME=m SD=s IX=-7 RP=4 "
                             "AC=a b PA AV=v PV PK WP "
                             "BT XT XM BS=100 SF=50 BM=b TH=t ")
                             .output;
  EXPECT_EQ(all.moments, MOMENTS::Correlations);
  EXPECT_EQ(all.momentFile, "my file.cm");
  EXPECT_EQ(all.dataFile, "new.VSF");
  EXPECT_EQ(all.width, 10);
  EXPECT_EQ(all.decimals, 3);
  EXPECT_EQ(all.meansFile, "m");
  EXPECT_EQ(all.deviationsFile, "s");
  EXPECT_EQ(all.seed, -7);
  EXPECT_EQ(all.repetitions, 4);
  EXPECT_EQ(all.covarianceFile, "a b");
  EXPECT_EQ(all.varianceFile, "v");
  EXPECT_TRUE(all.printCovariances && all.printVariances && all.pk && all.wide);
  EXPECT_TRUE(all.bivariateTables && !all.bivariateTests && !all.multivariateTests);
  EXPECT_EQ(all.samples, 100);
  EXPECT_EQ(all.sampleFraction, 50);
  EXPECT_EQ(all.sampleMomentFile, "b");
  EXPECT_EQ(all.thresholdFile, "t");
}

TEST(OutputLine, EndsFileNamesAtTheNextKeyword) {
  struct {
    const char* line;
    const char* file;
    bool wide;
  } const cases[] = {
      {"OU SM=a", "a", false},
      {"OU SM=a b  c ", "a b  c", false},
      {"OU SM=a WP", "a", true},
      {"OU SM=a WPX", "a WPX", false},  // no keyword
      {"OU SM=a MAX=1", "a MAX=1", false},
      {"OU SM=dir/MA=x/f WP", "dir/MA=x/f", true},
      {"OU SM=a SM=b WP", "b", true},  // the last one wins
      {"OU SM= a WP", "a", true},
      {"OU sm=A wp", "A", true},
  };
  for (const auto& c : cases) {
    const OUTPUTLINE output = Parsed(c.line).output;
    EXPECT_EQ(output.momentFile, c.file) << c.line;
    EXPECT_EQ(output.wide, c.wide) << c.line;
  }
}

TEST(Commands, SayWhatIsWrongAndWhere) {
  struct {
    const char* lines;
    int line;
    const char* cause;
  } const cases[] = {
      {"", 0, "expected the output line OU"},
      {"SE 1\n", 1, "expected the output line OU"},
      {"XX 1\nOU", 1, "expected a command, found \"XX\""},
      {"SE1\nOU", 1, "expected a command"},
      {"RE\nOU", 1, "expected a command"},
      {"SY='x'\nOU", 1, "before the first command, and once"},
      {"OU\n\nSE 1\n", 3, "OU is the last line"},
      {"OU\nOU\n", 2, "OU is the last line"},
      {"SE\nOU", 1, "expected variables of the analysis, found the end of the line"},
      {"SE 7\nOU", 1, "there is no variable \"7\""},
      {"SE 0\nOU", 1, "there is no variable \"0\""},
      {"SE 99999999999999999999\nOU", 1, "there is no variable"},
      {"SE a1\nOU", 1, "there is no variable \"a1\""},
      {"SE 3-2\nOU", 1, "there is no variable \"3-2\""},
      {"SE 1-7\nOU", 1, "there is no variable \"1-7\""},
      {"SE 1 2-3 A2\nOU", 1, "named twice"},
      {"SE 1\nSE 1\nOU", 2, "already selected"},
      {"SC\nOU", 1, "expected <, > or ="},
      {"SC 1 <\nOU", 1, "expected a number after <"},
      {"SC 9 < 1\nOU", 1, "found \"9\""},
      {"SC CASE HALF\nOU", 1, "expected ODD, EVEN"},
      {"SC CASE = 3\nOU", 1, "expected ODD, EVEN"},
      {"SD = 3\nOU", 1, "expected variables before ="},
      {"SD CASE ODD\nOU", 1, "expected <, > or ="},
      {"CO\nOU", 1, "expected variables"},
      {"CO X\nOU", 1, "there is no variable \"X\""},
      {"NE A1\nOU", 1, "found no ="},
      {"NE A1 =\nOU", 1, "expected a number, a variable's name"},
      {"NE A1 = B\nOU", 1, "found \"B\""},
      {"NE a b = 1\nOU", 1, "expected the name of a variable before ="},
      {"NE 17 = 1\nOU", 1, "expected the name of a variable before ="},
      {"NE = 1\nOU", 1, "expected the name of a variable before ="},
      {"NE abcdefghijklmnopq = 1\nOU", 1, "expected the name of a variable before ="},
      {"RC 1 OLD=1\nOU", 1, "expected NEW=number"},
      {"RC 1 NEW=1\nOU", 1, "expected OLD=values"},
      {"RC 1 OLD=1,,2 NEW=1\nOU", 1, "expected OLD= with numbers"},
      {"RC 1 OLD=3-1 NEW=1\nOU", 1, "expected OLD= with numbers"},
      {"RC 1 OLD= NEW=1\nOU", 1, "expected OLD= with numbers"},
      {"RC OLD=1 NEW=2\nOU", 1, "expected variables to recode"},
      {"FA NF=0\nOU", 1, "expected a whole number from 1"},
      {"FA NF=two\nOU", 1, "found \"two\""},
      {"FA XX\nOU", 1, "expected NF=k, MR or FS"},
      {"OFA\nOU", 1, "expected NOR or POM"},
      {"OFA NOR POM\nOU", 1, "NOR and POM"},
      {"PC NC=1.5\nOU", 1, "expected a whole number"},
      {"HT 1\nOU", 1, "expected the second"},
      {"HT 1 1\nOU", 1, "are the same"},
      {"HT 1 2 3\nOU", 1, "expected the end of the line"},
      {"ET 1\nOU", 1, "at least 2"},
      {"FT 1 2\nOU TH=t", 1, "expected the end of the line"},
      {"FT 1\nOU", 1, "FT needs the file"},
      {"FT 1\nMT 2\nOU TH=t", 1, "FT reads the file of TH="},
      {"IMPUTE 1 2\nOU", 1, "expected ( before the variables to impute"},
      {"IMPUTE (1 2\nOU", 1, "expected ) behind the variables to impute"},
      {"IMPUTE (1) ()\nOU", 1, "expected matching variables"},
      {"IMPUTE (1) (2) VR=x\nOU", 1, "after VR="},
      {"EM IT=5\nOU", 1, "expected variables"},
      {"EM 1 IT=10001\nOU", 1, "from 1 to 10000"},
      {"EM 1 CC=1\nOU", 1, "after CC="},
      {"EM 1 TC=3\nOU", 1, "from 0 to 2"},
      {"EM 1 RP=2\nOU", 1, "expected IT=n, CC=c or TC=t"},
      {"MC 1 RP=1001\nOU", 1, "from 1 to 1000"},
      {"RG 1 2\nOU", 1, "expected ON behind the y variables"},
      {"RG ON 2\nOU", 1, "expected y variables"},
      {"RG 1 ON\nOU", 1, "expected x variables"},
      {"RG 1 ON 1 2\nOU", 1, "both sides of ON"},
      {"TS 1 ON 2\nOU", 1, "expected WITH"},
      {"PR 1 ON 2 AP 3\nOU", 1, "expected the end of the line"},
      {"OU XX\n", 1, "expected a keyword of the output line"},
      {"OU MA=XX\n", 1, "expected CM, KM, AM or MM"},
      {"OU WI=33\n", 1, "from 1 to 32"},
      {"OU ND=9\n", 1, "from 0 to 8"},
      {"OU SM= WP\n", 1, "expected a file name after SM="},
      {"OU IX=99999999999\n", 1, "after IX="},
      {"OU RP=0\n", 1, "after RP="},
      {"OU SF=101\n", 1, "after SF="},
      {"\n! c\nSE 1 ! ok\nCO 9 ! bad\nOU", 4, "there is no variable \"9\""},
  };
  for (const auto& c : cases) {
    JOB job;
    FAULT fault;
    EXPECT_FALSE(ParseCommands(SplitSyntax(c.lines), SixVariables(), job, fault)) << c.lines;
    EXPECT_EQ(fault.line, c.line) << c.lines;
    EXPECT_THAT(fault.cause, HasSubstr(c.cause)) << c.lines;
  }
}

TEST(Recode, TakesTheFirstPairThatFits) {
  const JOB job = Parsed("RC 1 OLD=1,3-5 NEW=10 OLD=LO-0 NEW=-1 OLD=7-HI NEW=20 OLD=-9 NEW=0\nOU");
  const auto& recode = std::get<RECODE>(job.transformations.front());
  struct {
    double cell;
    bool missing;
    double want;
  } const cases[] = {
      {1, false, 10}, {2, false, 2},   {3, false, 10}, {5, false, 10}, {6, false, 6},
      {0, false, -1}, {-9, false, -1}, {-9, true, 0},  {7, false, 20}, {1e300, false, 20},
      {4, true, 4},   {8, true, 8},    {1, true, 10},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(recode.NewValue(c.cell, c.missing), c.want) << c.cell << ' ' << c.missing;
  }
}

}  // namespace
