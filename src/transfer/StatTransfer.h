// One use of the file transfer library: its environment, an open file and the file's dictionary.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "host/statrn32.h"
#include "transfer/FileTypes.h"
#include "transfer/TransferTypes.h"

namespace STUtils {

template <typename CharT>
class CStatTransfer {
 public:
  using string = std::basic_string<CharT>;

  CStatTransfer() : environment_(ST_OpenEnvironment()) {}
  ~CStatTransfer() { Close(); }
  CStatTransfer(const CStatTransfer&) = delete;
  CStatTransfer& operator=(const CStatTransfer&) = delete;

  // Closes an open file and forgets everything about it.
  void Reset();
  // Closes the files and the environment. Returns false when an output file could not be completed.
  bool Close();

  ST_ENV* Environment() const { return environment_; }
  // The text of the library's last error.
  string ErrorText() const;

  // Reads the next record into `values`, one for each variable. 1: done; 0: there are no more; -1:
  // a read error.
  int ReadRecord(std::vector<basic_variable_data_t<CharT>>& values) const;

  ST_FILE* file = nullptr;
  std::int32_t type = UNKNOWN_FILE_TYPE;
  std::int32_t secondType = UNKNOWN_FILE_TYPE;
  std::vector<basic_variable_info_t<CharT>> variables;
  std::int32_t cases = 0;  // -1 when the file does not tell
  bool flag = false;
  string missingText = kMissingText;

 private:
  static constexpr const CharT* kMissingText = "<missing>";

  bool ReadValue(int variable, basic_variable_data_t<CharT>& value) const;
  void ReadDate(int variable, std::int32_t display, basic_variable_data_t<CharT>& value) const;

  ST_ENV* environment_;
};

}  // namespace STUtils
