#include "datadoc/DescriptionBytes.h"

#include <cstring>
#include <type_traits>

namespace {

// Writing and reading go through the same list of fields, so that the two cannot differ.
class Writer {
 public:
  template <typename T>
  void Plain(const T& value) {
    static_assert(std::is_trivially_copyable_v<T>);
    out_.append(reinterpret_cast<const char*>(&value), sizeof value);
  }
  void Text(const CString& text) {
    Plain(text.size());
    out_ += text;
  }
  CString Take() { return std::move(out_); }

 private:
  CString out_;
};

class Reader {
 public:
  explicit Reader(std::string_view bytes) : rest_(bytes) {}
  template <typename T>
  void Plain(T& value) {
    if (!Holds(sizeof value)) return;
    std::memcpy(&value, rest_.data(), sizeof value);
    rest_.remove_prefix(sizeof value);
  }
  void Text(CString& text) {
    std::size_t size = 0;
    Plain(size);
    if (!Holds(size)) return;
    text.assign(rest_.substr(0, size));
    rest_.remove_prefix(size);
  }
  // Whether so many items of at least `bytes` each can still come.
  bool HasRoomFor(std::int64_t items, std::size_t bytes) {
    good_ = good_ && items >= 0 && static_cast<std::uint64_t>(items) <= rest_.size() / bytes;
    return good_;
  }
  bool IsAtEnd() const { return good_ && rest_.empty(); }

 private:
  bool Holds(std::size_t size) {
    good_ = good_ && size <= rest_.size();
    return good_;
  }

  std::string_view rest_;
  bool good_ = true;
};

template <typename Pass, typename Data>
void PassHead(Pass& pass, Data& data) {
  pass.Plain(data.format);
  pass.Plain(data.settings);
  pass.Plain(data.groupVariable);
  pass.Plain(data.settingsBytes);
  pass.Plain(data.records);
  pass.Plain(data.variables);
  pass.Plain(data.missing);
  pass.Plain(data.deletion);
  pass.Plain(data.weightVariable);
}

template <typename Pass, typename Data>
void PassVariable(Pass& pass, Data& data, std::size_t index) {
  auto& variable = data.variable[index];
  pass.Text(variable.name);
  pass.Text(variable.description);
  pass.Plain(variable.type);
  pass.Plain(variable.missing);
  pass.Plain(variable.categories);
  for (std::size_t slot = index * kCategorySlots; slot < (index + 1) * kCategorySlots; ++slot) {
    pass.Text(data.categoryLabels[slot]);
    pass.Plain(data.categoryValues[slot]);
  }
}

}  // namespace

CString DescriptionToBytes(const TORVIKSTRUCT& data) {
  Writer writer;
  PassHead(writer, data);
  for (std::size_t i = 0; i < static_cast<std::size_t>(data.variables); ++i) {
    PassVariable(writer, data, i);
  }
  return writer.Take();
}

bool DescriptionFromBytes(std::string_view bytes, TORVIKSTRUCT& data) {
  Reader reader(bytes);
  PassHead(reader, data);
  if (!reader.HasRoomFor(data.variables, sizeof(MissingDefinition))) return false;
  data.ResizeArrays(static_cast<std::size_t>(data.variables));
  for (std::size_t i = 0; i < data.variable.size(); ++i) PassVariable(reader, data, i);
  return reader.IsAtEnd();
}
