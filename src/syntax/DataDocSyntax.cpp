// The document's syntax files.
#include <cerrno>
#include <cstdio>
#include <filesystem>

#include "datadoc/DataDoc.h"
#include "syntax/PathNames.h"
#include "syntax/SyntaxText.h"

namespace {

bool WriteText(const char* fileName, const CString& text, const char* mode) {
  std::FILE* const file = std::fopen(fileName, mode);
  if (file == nullptr) return false;
  const bool written = std::fwrite(text.data(), 1, text.size(), file) == text.size();
  const int reason = errno;
  if (std::fclose(file) == 0 && written) return true;
  if (!written) errno = reason;
  return false;
}

// Half a syntax file would ask for something else than the whole one.
void RemovePart(const char* fileName) {
  const int reason = errno;
  std::error_code ignored;
  if (std::filesystem::is_regular_file(fileName, ignored)) std::remove(fileName);
  errno = reason;
}

}  // namespace

int CDataDoc::BuildTORVIKSyntax(CStringList* lines, const char* syntaxPath, const char*,
                                int withMissing, long repetitions, int rewind, int append) {
  SyntaxRequest request;
  request.systemFile = ReplaceExtension(syntaxPath, ".VSF");
  request.lines = lines;
  request.withMissing = withMissing != 0;
  request.repetitions = repetitions;
  request.rewind = rewind != 0;
  const CString text = SyntaxText(data_, request);
  if (!WriteText(syntaxPath, text, append != 0 ? "a" : "w") && append == 0) RemovePart(syntaxPath);
  return 1;
}

void CDataDoc::GetOUString(TRVOUSTRUCT* options, CString& line, int withData) {
  line = OutputLine(*options, withData != 0);
}
