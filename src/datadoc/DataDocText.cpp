// Text and DSF documents.
#include "datadoc/DataDoc.h"
#include "host/Host.h"

namespace {

int RefuseKind(const char* kind) {
  AfxMessageBox(CString("This version reads and writes no ") + kind +
                " yet. Import the file instead, or convert it to a system data file.");
  return 0;
}

}  // namespace

int CDataDoc::OpenDSFFile(const CString&) {
  return RefuseKind("DSF files");
}
int CDataDoc::SaveDSFFile(const CString&) {
  return RefuseKind("DSF files");
}
int CDataDoc::OpenASCIIFile(const CString&) {
  return RefuseKind("text documents");
}
int CDataDoc::SaveASCIIFile(const CString&) {
  return RefuseKind("text documents");
}
