#include "datadoc/DocumentFixture.h"
#include "syntax/ProcedureRun.h"
#include "syntax/procedures/Procedures.h"

class ProcedureRun : public DocumentTest {
 protected:
  void SetUp() override {
    Fill({{1, 2}, {3, 4}});
    Save(data);
  }
  // As a saved document of that name.
  void Save(const std::string& name) {
    WriteBytes(name, "data");
    document.SetPathName(name);
    document.SetModifiedFlag(false);
    host.messages.clear();
  }
  ProcedureResult Run(int endCode, const char* noOutput = kNoOutput) {
    dialogs = 0;
    return RunProcedure(
        document, [&] { return ++dialogs, endCode; },
        [&] {
          ProcedureJob job;
          job.lines = {"FA MR", "OU XT XM "};
          job.noOutput = noOutput;
          return job;
        });
  }
  std::vector<CString> Texts() const {
    std::vector<CString> texts;
    for (const auto& message : host.messages) texts.push_back(message.text);
    return texts;
  }
  using List = std::vector<CString>;

  const std::string data = folder / "survey.VSF";
  const std::string syntax = folder / "survey.TRK";
  const std::string output = folder / "survey.OUT";
  int dialogs = 0;
};

TEST_F(ProcedureRun, RefusesWhatIsNotSaved) {
  const struct {
    const char* name;
    bool modified;
    bool refused;
  } cases[] = {
      {"a.VSF", true, true},  {"", false, true},       {"b.vsf", false, false},
      {"a.txt", false, true}, {"aVSF", false, true},   {"VSF", false, true},
      {"a.dsf", false, true}, {"c.vSf", false, false}, {".VSF", false, false},
  };
  for (const auto& c : cases) {
    Save(folder / c.name);
    if (*c.name == '\0') document.SetPathName("");
    document.SetModifiedFlag(c.modified);
    const auto state = Run(kEndRun).state;
    EXPECT_EQ(state == ProcedureState::Refused, c.refused) << c.name;
    EXPECT_EQ(dialogs, c.refused ? 0 : 1) << c.name;
    EXPECT_EQ(Texts(),
              c.refused ? List{"Please save data before performing this operation"} : List{})
        << c.name;
  }
}

TEST_F(ProcedureRun, NeedsVariablesAndRawData) {
  const struct {
    std::int32_t variables;
    std::int32_t secondType;
    std::int32_t dataType;
    std::int32_t matrixType;
    bool any, ordinal;
  } cases[] = {
      {2, kOrdinal, kSystemDataFile, 0, true, true},
      {2, kContinuous, kSystemDataFile, 0, true, false},
      {1, kOrdinal, kSystemDataFile, 0, true, false},  // what lies behind does not count
      {0, kOrdinal, kSystemDataFile, 0, false, false},
      {2, kOrdinal, kDsfFile, 0, false, false},
      {2, kOrdinal, kTextFile, 1, false, false},
      {2, kOrdinal, kTextFile, 0, true, true},
  };
  for (const auto& c : cases) {
    TORVIKSTRUCT& set = *document.GetTorvik();
    set.variables = c.variables;
    set.variable[0].type = kContinuous;
    set.variable[1].type = c.secondType;
    EXTERNDATA kind;
    kind.data_type = c.dataType;
    kind.ma_type = c.matrixType;
    document.SetExternData(kind);
    EXPECT_EQ(CanRunProcedure(document), c.any) << c.variables << c.dataType;
    EXPECT_EQ(CanRunProcedure(document, true), c.ordinal) << c.variables << c.dataType;
  }
}

TEST_F(ProcedureRun, EndCodesChooseWhatHappens) {
  const struct {
    int endCode;
    ProcedureState state;
    bool syntaxWritten;
    bool engineRun;
  } cases[] = {
      {1, ProcedureState::Done, true, true},
      {1140, ProcedureState::SyntaxShown, true, false},
      {2, ProcedureState::NotWanted, false, false},
      {0, ProcedureState::NotWanted, false, false},
      {1317, ProcedureState::NotWanted, false, false},
      {-1, ProcedureState::NotWanted, false, false},
  };
  for (const auto& c : cases) {
    std::remove(syntax.c_str());
    host.engineRuns.clear();
    host.openedDocuments.clear();
    EXPECT_EQ(Run(c.endCode).state, c.state) << c.endCode;
    EXPECT_EQ(ReadBytes(syntax), c.syntaxWritten ? "!TORVIK SYNTAX: Can be edited \nSY='" + data +
                                                       "'\nFA MR\nOU XT XM \n"
                                                 : "")
        << c.endCode;
    ASSERT_EQ(host.engineRuns.size(), c.engineRun ? 1U : 0U) << c.endCode;
    const List opened = c.engineRun ? List{output} : c.syntaxWritten ? List{syntax} : List{};
    EXPECT_EQ(host.openedDocuments, opened) << c.endCode;
    if (!c.engineRun) continue;
    EXPECT_EQ(host.engineRuns[0].syntaxFile, syntax);
    EXPECT_EQ(host.engineRuns[0].outputFile, output);
    EXPECT_EQ(host.engineRuns[0].arguments, (std::array<long, 4>{1, 0, 0, 0}));
  }
  EXPECT_TRUE(host.messages.empty());
}

TEST_F(ProcedureRun, EngineResultsAndTheTwoSpellings) {
  const struct {
    int result;
    bool writesOutput;
    const char* noOutput;
    ProcedureState state;
    List messages;
  } cases[] = {
      {0, true, kNoOutput, ProcedureState::Done, {}},
      {1, true, kNoOutput, ProcedureState::Done, {}},
      {-1,
       false,
       kNoOutput,
       ProcedureState::Failed,
       {"Serious errors occured, no output file available!"}},
      {-1,
       false,
       kNoOutputOfRecode,
       ProcedureState::Failed,
       {"Serious errors occurred, no output file available!"}},
      {0,
       false,
       kNoOutput,
       ProcedureState::Failed,
       {"Serious errors occured, no output file available!"}},
  };
  for (const auto& c : cases) {
    host.messages.clear();
    host.openedDocuments.clear();
    host.engineResult = c.result;
    if (!c.writesOutput) host.engineOutput.reset();
    const ProcedureResult result = Run(kEndRun, c.noOutput);
    EXPECT_EQ(result.state, c.state) << c.result;
    EXPECT_EQ(result.engine, c.writesOutput ? c.result : -1);
    EXPECT_EQ(Texts(), c.messages) << c.result;
    EXPECT_EQ(host.openedDocuments.size(), c.writesOutput ? 1U : 0U);
    EXPECT_FALSE(ReadBytes(syntax).empty());
    host.engineOutput = "";
  }
}

TEST_F(ProcedureRun, RemovesWhatAnEarlierRunLeft) {
  WriteBytes(syntax, "old");
  WriteBytes(output, "old");
  host.onEngineRun = [&] {
    EXPECT_FALSE(std::filesystem::exists(output));
    EXPECT_NE(ReadBytes(syntax), "old");
  };
  host.engineResult = -1;
  EXPECT_EQ(Run(kEndRun).state, ProcedureState::Failed);
  EXPECT_FALSE(std::filesystem::exists(output));

  WriteBytes(output, "old");
  EXPECT_EQ(Run(kEndSyntax).state, ProcedureState::SyntaxShown);
  EXPECT_FALSE(std::filesystem::exists(output));
}

TEST_F(ProcedureRun, WithoutANewSyntaxFileNothingRuns) {
  std::filesystem::create_directory(syntax);  // can neither be removed nor written
  EXPECT_EQ(Run(kEndRun).state, ProcedureState::Failed);
  EXPECT_EQ(Run(kEndSyntax).state, ProcedureState::Failed);
  EXPECT_EQ(Texts(),
            (List{"Serious errors occured, no output file available!", "Cannot write to file!"}));
  EXPECT_EQ(host.statusTexts.back().find(syntax), 0U);
  std::filesystem::remove(syntax);
  std::filesystem::create_directory(output);
  EXPECT_EQ(Run(kEndRun).state, ProcedureState::Failed);
  EXPECT_TRUE(host.engineRuns.empty());
  EXPECT_TRUE(host.openedDocuments.empty());
}

TEST_F(ProcedureRun, NothingTakesTheDataFilesPlace) {
  std::filesystem::create_hard_link(data, output);
  EXPECT_EQ(Run(kEndRun).state, ProcedureState::Refused);
  std::filesystem::remove(output);
  std::filesystem::create_symlink(data, syntax);
  EXPECT_EQ(Run(kEndSyntax).state, ProcedureState::Refused);
  std::filesystem::remove(syntax);

  const std::string longPath = "/" + std::string(300, 'x') + ".VSF";  // nothing is derived from it
  document.SetPathName(longPath);
  EXPECT_EQ(Run(kEndRun).state, ProcedureState::Refused);

  Save(folder / "survey.vsf");  // the syntax would name survey.VSF, which is another file
  EXPECT_EQ(Run(kEndRun).state, ProcedureState::Refused);
  EXPECT_NE(host.LastMessage().find(data), std::string::npos);
  EXPECT_EQ(dialogs, 0);
  EXPECT_EQ(folder.FileCount(), 2U);
  EXPECT_EQ(ReadBytes(data), "data");
}

// A syntax of the user's may read a data set whose name ends in .OUT.
TEST_F(ProcedureRun, ADataSetIsNoOldOutput) {
  const std::string bytes = "VEXC16 DATA SYSTEM FILE" + std::string(300, ' ');
  WriteBytes(syntax, "SY='survey.OUT'\nOU\n");
  WriteBytes(output, bytes);
  EXPECT_EQ(RunSyntaxFile(syntax).state, ProcedureState::Failed);
  EXPECT_EQ(Run(kEndRun).state, ProcedureState::Failed);
  EXPECT_TRUE(host.engineRuns.empty());
  EXPECT_EQ(ReadBytes(output), bytes);
}

TEST_F(ProcedureRun, BootstrappingPassesItsOwnRepetitions) {
  RunProcedure(
      document, [] { return kEndRun; },
      [] {
        return ProcedureJob{{"OU RP=50 "}, 50, 1, kNoOutput};
      });
  EXPECT_EQ(ReadBytes(syntax),
            "!TORVIK SYNTAX: Can be edited \nRP=50 SY='" + data + "'\n REOU RP=50 \n");
}

class ContentsRun : public ProcedureRun {
 protected:
  void SetUp() override {
    ProcedureRun::SetUp();
    setenv("TMPDIR", temporary.Path().c_str(), 1);
  }
  void TearDown() override { unsetenv("TMPDIR"); }
  TempFolder temporary;
};

TEST_F(ContentsRun, HasATextCopyWhileItRuns) {
  std::string copy;
  host.onEngineRun = [&] {
    for (const auto& entry : std::filesystem::directory_iterator(temporary.Path())) {
      copy = ReadBytes(entry.path().string());
      EXPECT_EQ(entry.path().filename().string().substr(0, 2), "VS");
    }
  };
  EXPECT_EQ(RunContentsListing(document).state, ProcedureState::Done);
  EXPECT_EQ(copy, "              1               2  \n              3               4  \n");
  EXPECT_EQ(temporary.FileCount(), 0U);
  const std::string text = ReadBytes(syntax);
  EXPECT_EQ(text.find("!TORVIK SYNTAX: Can be edited \n\n!Contents of VSFFILE: \n"), 0U);
  const std::string end = "!End of Contents \n!--------------- \n\nSY='" + data + "'\nOU XM\n";
  EXPECT_EQ(text.substr(text.size() - end.size()), end);
  EXPECT_EQ(host.openedDocuments, List{output});
}

TEST_F(ContentsRun, StopsWithoutATextCopy) {
  host.cancelAtStep = host.progressSteps;
  EXPECT_EQ(RunContentsListing(document).state, ProcedureState::Refused);
  document.SetModifiedFlag();
  EXPECT_EQ(RunContentsListing(document).state, ProcedureState::Refused);
  EXPECT_EQ(host.LastMessage(), "Please save data before performing this operation");
  document.SetModifiedFlag(false);
  setenv("TMPDIR", "/proc/self/fd", 1);  // closed to everyone, root too
  EXPECT_EQ(RunContentsListing(document).state, ProcedureState::Refused);
  EXPECT_EQ(host.LastMessage(), "Unable to produce temporary file!");
  EXPECT_TRUE(host.engineRuns.empty());
  EXPECT_EQ(temporary.FileCount(), 0U);
  EXPECT_FALSE(std::filesystem::exists(syntax));
}

TEST_F(ProcedureRun, ASyntaxFileRunsAsItStands) {
  const std::string edited = folder / "edited.trk";
  WriteBytes(edited, "anything");
  EXPECT_EQ(RunSyntaxFile(edited).state, ProcedureState::Done);
  EXPECT_EQ(ReadBytes(edited), "anything");
  EXPECT_EQ(host.openedDocuments, List{folder / "edited.OUT"});
  const std::string named = folder / "edited.OUT";
  EXPECT_EQ(RunSyntaxFile(named).state, ProcedureState::Refused);
  EXPECT_TRUE(std::filesystem::exists(named));
}

TEST_F(ProcedureRun, FactorAnalysisOfASubset) {
  Fill({{1, 2, 3, 4, 5}});
  Save(data);
  const FactorAnalysisChoices choices{{"A", "B", "E"}, true, "2", true};
  for (const int endCode : {kEndRun, kEndSyntax}) {
    std::remove(syntax.c_str());
    RunProcedure(
        document, [&] { return endCode; },
        [&] { return JobOf(*document.GetTorvik(), *document.GetOutputOptions(), choices); });
    EXPECT_EQ(ReadBytes(syntax), "!TORVIK SYNTAX: Can be edited \nSY='" + data +
                                     "'\n\nSE 1 2 5 \nFA NF=2 MR FS\nOU XT XM \n");
  }
}

TEST_F(ProcedureRun, BootstrappingWritesTheCountTwice) {
  document.GetOutputOptions()->nRepetitions = 50;
  document.GetOutputOptions()->bRewind = 1;
  RunProcedure(
      document, [] { return kEndSyntax; },
      [&] {
        return JobOf(*document.GetTorvik(), *document.GetOutputOptions(), BootstrappingChoices());
      });
  EXPECT_EQ(ReadBytes(syntax), "!TORVIK SYNTAX: Can be edited \nRP=50 SY='" + data +
                                   "'\n REOU RP=50 XT XM  BS=100 SF=100 \n");
}
