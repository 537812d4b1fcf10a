#include <gtest/gtest.h>

#include "host/Framework.h"
#include "host/Recorder.h"

namespace {

class SavedDocument : public CDocument {
 public:
  int OnOpenDocument(const CString&) override { return 1; }
  int OnSaveDocument(const CString& fileName) override {
    saved.push_back(fileName);
    return succeed ? 1 : 0;
  }
  std::vector<CString> saved;
  bool succeed = true;

 protected:
  std::vector<FileDialogRow> SaveAsRows() const override {
    return {{"Data (*.VSF)", "*.VSF", "VSF"}};
  }
};

}  // namespace

TEST(SaveAs, AppendsTheExtensionAndKeepsTheNameOnlyOnSuccess) {
  CRecorder host;
  SavedDocument document;
  document.SetPathName("/old/name.VSF");
  host.choices = {{{"/new/data", 0}}, {{"/new/other.VSF", 0}}, std::nullopt};

  EXPECT_EQ(document.OnFileSaveAs(), 1);
  EXPECT_EQ(host.dialogs[0].folder, "/old");
  EXPECT_EQ(host.dialogs[0].fileName, "name.VSF");
  EXPECT_EQ(document.GetPathName(), "/new/data.VSF");

  document.succeed = false;
  EXPECT_EQ(document.OnFileSaveAs(), 0);
  EXPECT_EQ(document.GetPathName(), "/new/data.VSF");

  EXPECT_EQ(document.OnFileSaveAs(), 0);  // cancelled: nothing is written
  EXPECT_EQ(document.saved, (std::vector<CString>{"/new/data.VSF", "/new/other.VSF"}));
}
