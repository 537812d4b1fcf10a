// XML as a stream of beginnings, texts and ends of elements.
#pragma once

#include <string>
#include <string_view>

#include "statrn32/ZipFile.h"

struct _xmlTextReader;

namespace statrn32 {

// Names are without their prefixes. Nothing outside of the document is ever loaded.
class CXmlReader {
 public:
  explicit CXmlReader(const CZipFile::READ& read);
  ~CXmlReader();
  CXmlReader(const CXmlReader&) = delete;
  CXmlReader& operator=(const CXmlReader&) = delete;

  enum class NODE { Begin, Text, End, Finished, Damaged };
  // The next node. An empty element gives Begin and End.
  NODE Next();
  // Of a Begin or End. Valid until the next call of Next.
  std::string_view Name() const { return name_; }
  // Of a Begin; empty when there is none.
  std::string Attribute(const char* name) const;
  // Of a Text.
  std::string_view Text() const;

 private:
  static int OnRead(void* context, char* to, int size);

  const CZipFile::READ& read_;
  struct _xmlTextReader* reader_;
  std::string_view name_;
  bool emptyBegun_ = false;
};

}  // namespace statrn32
