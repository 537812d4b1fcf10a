#include "statrn32/XmlReader.h"

#include <libxml/xmlreader.h>

namespace statrn32 {

CXmlReader::CXmlReader(const CZipFile::READ& read) : read_(read) {
  constexpr int kOptions = XML_PARSE_NONET | XML_PARSE_NOERROR | XML_PARSE_NOWARNING;
  reader_ = xmlReaderForIO(OnRead, nullptr, this, nullptr, nullptr, kOptions);
}

CXmlReader::~CXmlReader() {
  if (reader_ != nullptr) xmlFreeTextReader(reader_);
}

int CXmlReader::OnRead(void* context, char* to, int size) {
  return static_cast<CXmlReader*>(context)->read_(to, size);
}

CXmlReader::NODE CXmlReader::Next() {
  if (reader_ == nullptr) return NODE::Damaged;
  if (emptyBegun_) {
    emptyBegun_ = false;
    return NODE::End;
  }
  for (;;) {
    const int status = xmlTextReaderRead(reader_);
    if (status != 1) return status == 0 ? NODE::Finished : NODE::Damaged;
    switch (xmlTextReaderNodeType(reader_)) {
      case XML_READER_TYPE_ELEMENT:
        name_ = reinterpret_cast<const char*>(xmlTextReaderConstLocalName(reader_));
        emptyBegun_ = xmlTextReaderIsEmptyElement(reader_) == 1;
        return NODE::Begin;
      case XML_READER_TYPE_END_ELEMENT:
        name_ = reinterpret_cast<const char*>(xmlTextReaderConstLocalName(reader_));
        return NODE::End;
      case XML_READER_TYPE_TEXT:
      case XML_READER_TYPE_CDATA:
      case XML_READER_TYPE_SIGNIFICANT_WHITESPACE:
        return NODE::Text;
      default:
        break;
    }
  }
}

std::string CXmlReader::Attribute(const char* name) const {
  std::string value;
  for (int more = xmlTextReaderMoveToFirstAttribute(reader_); more == 1;
       more = xmlTextReaderMoveToNextAttribute(reader_)) {
    const auto* const local = xmlTextReaderConstLocalName(reader_);
    if (std::string_view(reinterpret_cast<const char*>(local)) != name) continue;
    const auto* const text = xmlTextReaderConstValue(reader_);
    if (text != nullptr) value = reinterpret_cast<const char*>(text);
    break;
  }
  xmlTextReaderMoveToElement(reader_);
  return value;
}

std::string_view CXmlReader::Text() const {
  const auto* const text = xmlTextReaderConstValue(reader_);
  return text != nullptr ? reinterpret_cast<const char*>(text) : "";
}

}  // namespace statrn32
