// The whole import, from dialogs to a file that opens, on files that the library's writers make
// here.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "datadoc/DocumentFixture.h"
#include "host/statrn32.h"
#include "support/FileSizeLimit.h"
#include "transfer/DataPort.h"

using STUtils::eCANCELLED;
using STUtils::eFAILED;
using STUtils::eOK;

class ImportSequence : public DocumentTest {
 protected:
  // An SPSS file of `records` records 0, 1, 2, ...; every third value of the second variable is
  // missing.
  void MakeSource(int records) {
    ST_ENV* const env = ST_OpenEnvironment();
    ST_InitUserDict(env, 3);
    ST_AddUserVar(env, "number", ST_TYPE_NUMERIC, 8, 2);
    ST_AddUserVar(env, "a_variable_with_a_long_name", ST_TYPE_NUMERIC, 8, 2);
    ST_AddUserVar(env, "text", ST_TYPE_STRING, 8, 0);
    ST_SetNCases(env, records);
    ST_FILE* const file = ST_OpenOutFile(env, 22, source.c_str());
    ASSERT_NE(file, nullptr) << ST_GetErrorMsg(env);
    for (int i = 0; i < records; ++i) {
      ST_SetVarDouble(file, 0, i);
      i % 3 == 0 ? ST_SetVarMissing(file, 1) : ST_SetVarDouble(file, 1, i * 0.5);
      ST_SetVarString(file, 2, "word");
      ASSERT_EQ(ST_WriteRecord(file), 0);
    }
    ASSERT_EQ(ST_CloseFiles(env), 0);
    ST_CloseEnvironment(env);
  }
  // Is the file that is neither source nor target named in the message?
  bool NamesKeptPart(const CString& message) const {
    for (const auto& entry : std::filesystem::directory_iterator(folder / "")) {
      const CString name = entry.path().string();
      if (name != source && name != target) return message.find(name) != CString::npos;
    }
    return false;
  }
  STUtils::eRESULT ImportTo(const CString& systemFileName) {
    CString name = source;
    int type = 22;
    CString systemFile = systemFileName;
    return port.Import(name, type, false, true, systemFile);
  }
  CDataPort port{&host};
  const CString source = folder / "source.sav";
  const CString target = folder / "source.VSF";
};

TEST_F(ImportSequence, AsksForBothFilesAndWritesWhatOpens) {
  MakeSource(4);
  host.choices = {{{source, 0}}, {{folder / "chosen", 0}}};
  CString name;
  int type = STUtils::UNKNOWN_FILE_TYPE;
  CString systemFile;
  ASSERT_EQ(port.Import(name, type, systemFile), eOK) << host.LastMessage();
  EXPECT_EQ(type, 22);
  EXPECT_EQ(systemFile, folder / "chosen.VSF");
  EXPECT_EQ(host.dialogs[1].fileName, "source.VSF");
  EXPECT_TRUE(host.dialogs[1].save);
  ASSERT_EQ(host.dialogs[1].rows.size(), 1U);
  EXPECT_EQ(host.dialogs[1].rows[0].displayName, "VEXMOR Data (*.VSF)");
  EXPECT_EQ(host.waitCursors, 0);
  EXPECT_EQ(host.waitCursorsEver, 1);

  ASSERT_EQ(document.OnOpenDbmsDocument(systemFile), 1);
  constexpr double M = kMissingCode;
  EXPECT_EQ(Rows(),
            (std::vector<std::vector<double>>{{0, M, M}, {1, 0.5, M}, {2, 1, M}, {3, M, M}}));
  EXPECT_EQ(document.GetTorvik()->variable[1].name, "a_variable_with_");
}

TEST_F(ImportSequence, EitherDialogCancelledWritesNothing) {
  MakeSource(1);
  for (const bool second : {false, true}) {
    host.choices.clear();
    if (second) host.choices = {{{source, 0}}, std::nullopt};
    CString name;
    int type = STUtils::UNKNOWN_FILE_TYPE;
    CString systemFile;
    EXPECT_EQ(port.Import(name, type, systemFile), eCANCELLED);
    EXPECT_EQ(folder.FileCount(), 1U);
  }
}

TEST_F(ImportSequence, WithoutASystemFileItFailsByDesign) {
  MakeSource(1);
  CString name = source;
  int type = 22;
  EXPECT_EQ(port.Import(name, type), eFAILED);
  EXPECT_EQ(folder.FileCount(), 1U);
}

TEST_F(ImportSequence, NoRecordsGiveAHeaderWithoutCells) {
  MakeSource(0);
  ASSERT_EQ(ImportTo(target), eOK) << host.LastMessage();
  EXPECT_EQ(ReadBytes(target).size(), 128U + 3 * 276);
  ASSERT_EQ(document.OnOpenDbmsDocument(target), 1);
  EXPECT_EQ(document.GetRecnum(), 0);
}

TEST_F(ImportSequence, ImportsOnlyWhatIsSelected) {
  MakeSource(2);
  port.SetSelection({"number"});
  ASSERT_EQ(ImportTo(target), eOK);
  EXPECT_EQ(ReadBytes(target).size(), 128U + 276 + 2 * 8);
  port.SetSelection({"number", "nobody"});
  EXPECT_EQ(ImportTo(folder / "other.VSF"), eFAILED);
  EXPECT_EQ(host.LastMessage(), "The file has no variable of this name: nobody");
}

TEST_F(ImportSequence, KeepsNamesAndLabelsWhenAskedTo) {
  MakeSource(1);
  port.SetKeepLabels(true);
  ASSERT_EQ(ImportTo(target), eOK);
  ASSERT_EQ(document.OnOpenDbmsDocument(target), 1);
  EXPECT_EQ(document.GetTorvik()->variable[1].description, "a_variable_with_a_long_name");
}

TEST_F(ImportSequence, ADamagedSourceKeepsThePartAndItsCountAtMinusOne) {
  MakeSource(5000);
  const std::string whole = ReadBytes(source);
  WriteBytes(source, whole.substr(0, whole.size() / 2));
  EXPECT_EQ(ImportTo(target), eFAILED);
  ASSERT_FALSE(host.messages.empty());
  const std::string part = ReadBytes(target);
  ASSERT_GE(part.size(), 128U + 3 * 276);
  EXPECT_EQ(part.substr(64, 4), "\xFF\xFF\xFF\xFF");
  EXPECT_EQ(folder.FileCount(), 2U);
}

TEST_F(ImportSequence, ADamagedSourceLeavesAnExistingTargetAlone) {
  MakeSource(5000);
  const std::string whole = ReadBytes(source);
  WriteBytes(source, whole.substr(0, whole.size() / 2));
  WriteBytes(target, "the old file");
  EXPECT_EQ(ImportTo(target), eFAILED);
  EXPECT_EQ(ReadBytes(target), "the old file");
  EXPECT_EQ(folder.FileCount(), 3U);  // the part stands beside it, and the message names it
  EXPECT_TRUE(NamesKeptPart(host.LastMessage())) << host.LastMessage();
}

TEST_F(ImportSequence, AStopWritesNothing) {
  MakeSource(5000);
  host.cancelAtStep = 2;
  EXPECT_EQ(ImportTo(target), eFAILED);
  EXPECT_TRUE(host.messages.empty());
  EXPECT_EQ(folder.FileCount(), 1U);
  EXPECT_EQ(host.statusTexts.back(), "The import was stopped.");
}

TEST_F(ImportSequence, AFullDiskIsToldAndLeavesAnExistingTargetAlone) {
  MakeSource(5000);
  WriteBytes(target, "the old file");
  {
    const FileSizeLimit limit(20000);
    EXPECT_EQ(ImportTo(target), eFAILED);
  }
  ASSERT_EQ(host.messages.size(), 1U);
  EXPECT_TRUE(host.messages[0].text.starts_with("Error in attempting to write VSF file:\n" +
                                                target + ": File too large\n"))
      << host.messages[0].text;
  EXPECT_TRUE(NamesKeptPart(host.messages[0].text));
  EXPECT_EQ(ReadBytes(target), "the old file");
}

TEST_F(ImportSequence, TargetsThatCannotBeWrittenAreTold) {
  MakeSource(1);
  const CString absent = folder / "absent/x.VSF";
  EXPECT_EQ(ImportTo(absent), eFAILED);
  EXPECT_EQ(host.LastMessage(),
            "Error in attempting to write VSF file:\n" + absent + ": No such file or directory");
  WriteBytes(target, "old");
  chmod(target.c_str(), 0444);
  EXPECT_EQ(ImportTo(target), eFAILED);
  EXPECT_EQ(ReadBytes(target), "old");
  EXPECT_EQ(ImportTo(source), eFAILED);
  EXPECT_EQ(host.LastMessage(), "A file cannot be imported onto itself: " + source);
}

TEST_F(ImportSequence, ANameThatTheContentBeliesIsAskedAbout) {
  MakeSource(1);
  const CString wrong = folder / "wrong.dta";
  WriteBytes(wrong, ReadBytes(source));
  for (const auto& [answer, expected] :
       {std::pair{MessageAnswer::Yes, 22}, {MessageAnswer::No, 14}}) {
    host.choices = {{{wrong, 0}}};
    host.answers = {answer};
    CString name;
    int type = STUtils::UNKNOWN_FILE_TYPE;
    ASSERT_EQ(port.DoPromptForImportFileNameAndType(name, type), eOK);
    EXPECT_EQ(type, expected);
  }
}
