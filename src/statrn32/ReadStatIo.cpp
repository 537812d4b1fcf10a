#include "statrn32/ReadStatIo.h"

#include <cerrno>
#include <cstring>

#include "host/Text.h"

namespace statrn32 {
namespace {

CInputFile& File(void* context) {
  return *static_cast<CInputFile*>(context);
}

int OnOpen(const char* /*path*/, void* context) {
  return File(context).Seek(0) ? 0 : -1;
}

int OnClose(void* /*context*/) {
  return 0;
}

readstat_off_t OnSeek(readstat_off_t offset, readstat_io_flags_t whence, void* context) {
  CInputFile& file = File(context);
  std::int64_t base = 0;
  if (whence == READSTAT_SEEK_CUR) base = file.Position();
  if (whence == READSTAT_SEEK_END) base = file.Size();
  std::int64_t position = 0;
  if (__builtin_add_overflow(base, static_cast<std::int64_t>(offset), &position)) return -1;
  return file.Seek(position) ? static_cast<readstat_off_t>(position) : -1;
}

ssize_t OnRead(void* buffer, std::size_t size, void* context) {
  if (size > static_cast<std::size_t>(PTRDIFF_MAX)) return -1;
  return static_cast<ssize_t>(File(context).Read(buffer, static_cast<std::int64_t>(size)));
}

// Progress is taken from the file's position, not from here.
readstat_error_t OnUpdate(long /*size*/, readstat_progress_handler /*handler*/, void* /*user*/,
                          void* /*context*/) {
  return READSTAT_OK;
}

std::string Problem(const CInputFile& input, const PARSE_RESULT& result) {
  if (!result.refusal.empty()) return result.refusal;
  switch (result.code) {
    case READSTAT_ERROR_READ:
    case READSTAT_ERROR_SEEK:
      if (result.position >= input.Size()) return "the file ends too early";
      break;
    case READSTAT_ERROR_ROW_COUNT_MISMATCH:
      return "the file holds another number of records than its header tells";
    case READSTAT_ERROR_PARSE:
      return "the file is damaged: what stands here does not belong to this format";
    case READSTAT_ERROR_MALLOC:
      return "the file asks for more memory than there is, so it is probably damaged";
    default:
      break;
  }
  const char* const text = readstat_error_message(result.code);
  return text != nullptr ? text : "unknown error";
}

}  // namespace

PARSER MakeParser(CInputFile* input) {
  PARSER parser(readstat_parser_init());
  if (!parser) return parser;
  readstat_set_open_handler(parser.get(), OnOpen);
  readstat_set_close_handler(parser.get(), OnClose);
  readstat_set_seek_handler(parser.get(), OnSeek);
  readstat_set_read_handler(parser.get(), OnRead);
  readstat_set_update_handler(parser.get(), OnUpdate);
  readstat_set_io_ctx(parser.get(), input);
  readstat_set_handler_character_encoding(parser.get(), nullptr);
  return parser;
}

std::string FailureText(const std::string& name, const CInputFile& input,
                        const PARSE_RESULT& result) {
  std::string text = name + ": " + Problem(input, result);
  const std::string detail = TextForDisplay(Trimmed(result.detail));
  if (!detail.empty()) text += ": " + detail;
  text += " (at byte " + std::to_string(result.position) + " of " + std::to_string(input.Size());
  if (result.records >= 0) text += ", after " + std::to_string(result.records) + " records";
  return text + ")";
}

std::string OpenFailureText(const std::string& name) {
  return name + ": cannot be opened: " + std::strerror(errno);
}

}  // namespace statrn32
