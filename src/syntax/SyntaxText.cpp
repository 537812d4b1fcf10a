#include "syntax/SyntaxText.h"

CString SyntaxText(const TORVIKSTRUCT& data, const SyntaxRequest& request) {
  CString text = "!TORVIK SYNTAX: Can be edited \n";
  if (request.repetitions == kContentsListing) {
    text += ContentsListing(data, request.withMissing);
  } else if (request.repetitions > 1) {
    text += "RP=" + std::to_string(request.repetitions) + ' ';
  }
  const CString systemFileLine = "SY='" + request.systemFile + "'\n";
  if (request.rewind) {
    // No line end: the first command line joins without a blank.
    text += systemFileLine + " RE";
  } else if (request.repetitions > 0 || request.repetitions == kContentsListing) {
    text += systemFileLine;
  }
  if (request.lines == nullptr) return text;
  for (const CString& line : *request.lines) (text += line) += '\n';
  return text;
}
