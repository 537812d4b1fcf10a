#include "engine/run/RankRepetition.h"

#include "engine/parallel/Parcel.h"

namespace {

void PutTexts(CParcelWriter& to, const std::vector<std::string>& texts) {
  to.Put(static_cast<std::uint64_t>(texts.size()));
  for (const std::string& text : texts) to.Put(text);
}

std::vector<std::string> TakeTexts(CParcelReader& from) {
  std::vector<std::string> texts;
  for (auto left = from.Take<std::uint64_t>(); left > 0; --left) texts.push_back(from.TakeText());
  return texts;
}

}  // namespace

std::string RANKREPETITION::Pack() const {
  CParcelWriter to;
  to.Put(done);
  to.Put(failed);
  to.Put(fault.line);
  to.Put(fault.lineText);
  to.Put(fault.cause);
  to.Put(fault.remedy);
  to.Put(text);
  PutTexts(to, warnings);
  PutTexts(to, files);
  return to.Bytes();
}

RANKREPETITION RANKREPETITION::Unpack(const std::string& bytes) {
  CParcelReader from(bytes);
  RANKREPETITION one;
  one.done = from.Take<bool>();
  one.failed = from.Take<bool>();
  one.fault.line = from.Take<int>();
  one.fault.lineText = from.TakeText();
  one.fault.cause = from.TakeText();
  one.fault.remedy = from.TakeText();
  one.text = from.TakeText();
  one.warnings = TakeTexts(from);
  one.files = TakeTexts(from);
  return one;
}
