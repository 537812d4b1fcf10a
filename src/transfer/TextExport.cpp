#include "transfer/TextExport.h"

#include "host/ShortestNumber.h"
#include "host/statrn32.h"
#include "transfer/FileTypes.h"

namespace STUtils {
namespace {

std::string& AppendShortest(double value, std::string& text) {
  char buffer[kNumberBytes];
  return text.append(buffer, WriteShortest(value, buffer));
}

}  // namespace

char TextSeparator(std::int32_t type, char own) {
  switch (type) {
    case SPACE_TEXT_FILE_TYPE:
      return ' ';
    case DELIMITED_TEXT_FILE_TYPE:
      return own;
    case TAB_TEXT_FILE_TYPE:
      return '\t';
    default:
      return ',';
  }
}

void AppendQuoted(const std::string& value, std::string& text) {
  text += '"';
  for (const char c : value) {
    if (c == '"' || c == '\\') text += '\\';
    text += c;
  }
  text += '"';
}

void AppendValueText(const variable_data_t& value, std::string& text) {
  if (value.missing) return;
  switch (value.kind) {
    case 0:
    case ST_TYPE_NUMERIC:
      value.text.empty() ? AppendShortest(value.value, text) : text.append(value.text);
      break;
    case ST_TYPE_STRING:
      AppendQuoted(value.text, text);
      break;
    case ST_DISPLAY_DATE:
    case ST_DISPLAY_TIME:
    case ST_DISPLAY_DATETIME:
      text += std::to_string(value.kind == ST_DISPLAY_TIME ? value.datePart2 : value.datePart1);
      break;
    case ST_TYPE_DATE:
      AppendShortest(value.value, text);
      break;
    default:
      break;
  }
}

}  // namespace STUtils
