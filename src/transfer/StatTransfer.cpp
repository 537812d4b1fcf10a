#include "transfer/StatTransfer.h"

namespace STUtils {

template <typename CharT>
void CStatTransfer<CharT>::Reset() {
  if (environment_ != nullptr) ST_CloseFiles(environment_);
  file = nullptr;
  type = UNKNOWN_FILE_TYPE;
  secondType = UNKNOWN_FILE_TYPE;
  variables.clear();
  cases = 0;
  flag = false;
  missingText = kMissingText;
}

template <typename CharT>
bool CStatTransfer<CharT>::Close() {
  if (environment_ == nullptr) return true;
  file = nullptr;
  const bool completed = ST_CloseFiles(environment_) == 0;
  ST_CloseEnvironment(environment_);
  environment_ = nullptr;
  return completed;
}

template <typename CharT>
auto CStatTransfer<CharT>::ErrorText() const -> string {
  return environment_ != nullptr ? ST_GetErrorMsg(environment_) : "";
}

template <typename CharT>
int CStatTransfer<CharT>::ReadRecord(std::vector<basic_variable_data_t<CharT>>& values) const {
  const int status = ST_ReadRecord(file);
  if (status != 1) return status;
  const int count = static_cast<int>(values.size());
  for (int variable = 0; variable < count; ++variable) {
    if (!ReadValue(variable, values[static_cast<std::size_t>(variable)])) return -1;
  }
  return 1;
}

template <typename CharT>
bool CStatTransfer<CharT>::ReadValue(int variable, basic_variable_data_t<CharT>& value) const {
  const void* data = nullptr;
  std::int32_t display = 0;
  const int status = ST_GetVarDataExt(file, variable, &value.kind, &data, &display);
  if (status == ST_STATUS_ERROR) return false;
  value.missing = status != ST_STATUS_PRESENT;
  value.value = 0;
  value.text.clear();
  if (value.missing) {
    value.text = missingText;
  } else if (value.kind == ST_TYPE_STRING) {
    value.text = static_cast<const CharT*>(data);
  } else {
    value.value = *static_cast<const double*>(data);
    if (value.kind == ST_TYPE_DATE) ReadDate(variable, display, value);
  }
  return true;
}

template <typename CharT>
void CStatTransfer<CharT>::ReadDate(int variable, std::int32_t display,
                                    basic_variable_data_t<CharT>& value) const {
  if (display != ST_DISPLAY_OTHER) {
    ST_FromIDate(file, value.value, display, &value.datePart1, &value.datePart2);
    return;
  }
  constexpr int kLongest = 64;
  CharT buffer[kLongest] = {};
  ST_FormatDate(file, variable, value.value, buffer, kLongest);
  value.text = buffer;
}

template class CStatTransfer<char>;

}  // namespace STUtils
