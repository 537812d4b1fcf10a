#include "transfer/FileContent.h"

#include <boost/format.hpp>

#include "host/Host.h"
#include "host/statrn32.h"
#include "transfer/FileTypes.h"

namespace STUtils {

std::int32_t TypeByContent(const std::string& name, std::int32_t type) {
  if (ST_FileFits(name.c_str(), type)) return type;
  const std::int32_t content = ST_SniffFile(name.c_str());
  return content >= 0 ? content : type;
}

std::int32_t AskAboutContent(const std::string& name, std::int32_t type) {
  const std::int32_t content = TypeByContent(name, type);
  if (content == type) return type;
  const std::string question = boost::str(
      boost::format("By its name '%1%' is of the type %2%, but what it holds begins as %3%.\n\n"
                    "Click [Yes] to read it as %3%.\nClick [No] to read it as %2%.") %
      name % NameOfType(type) % NameOfType(content));
  const MessageAnswer answer = AfxMessageBox(question, MessageButtons::YesNo, "Import Data");
  return answer == MessageAnswer::Yes ? content : type;
}

}  // namespace STUtils
