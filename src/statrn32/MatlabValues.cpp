#include "statrn32/MatlabValues.h"

#include <cmath>
#include <cstdint>
#include <cstring>

#include "host/Text.h"
#include "statrn32/Utf16.h"

namespace statrn32 {
namespace {

template <typename NUMBER>
double NumberIn(const void* data, std::size_t index) {
  NUMBER number;
  std::memcpy(&number, static_cast<const char*>(data) + index * sizeof number, sizeof number);
  return static_cast<double>(number);
}

}  // namespace

bool IsNumeric(const matvar_t& variable) {
  return variable.class_type == MAT_C_SPARSE ||
         (variable.class_type >= MAT_C_DOUBLE && variable.class_type <= MAT_C_UINT64);
}

std::size_t Elements(const matvar_t& variable) {
  std::size_t count = 1;
  for (int i = 0; i < variable.rank; ++i) {
    if (__builtin_mul_overflow(count, variable.dims[i], &count)) return 0;
  }
  return variable.rank >= 2 ? count : 0;
}

bool IsVector(const matvar_t& variable) {
  if (variable.class_type == MAT_C_CHAR) return variable.rank == 2;
  return variable.rank == 2 && (variable.dims[0] == 1 || variable.dims[1] == 1);
}

std::size_t RowsOf(const matvar_t& variable) {
  if (variable.rank < 2) return 0;
  const bool turned = variable.class_type != MAT_C_CHAR && variable.class_type != MAT_C_SPARSE &&
                      IsVector(variable);
  return turned ? Elements(variable) : variable.dims[0];
}

bool IsWhole(const matvar_t& variable, std::size_t elementBytes) {
  std::size_t bytes = 0;
  return variable.data != nullptr &&
         !__builtin_mul_overflow(Elements(variable), elementBytes, &bytes) &&
         variable.nbytes >= bytes;
}

double NumberAt(matio_types type, const void* data, std::size_t index) {
  switch (type) {
    case MAT_T_DOUBLE:
      return NumberIn<double>(data, index);
    case MAT_T_SINGLE:
      return NumberIn<float>(data, index);
    case MAT_T_INT64:
      return NumberIn<std::int64_t>(data, index);
    case MAT_T_UINT64:
      return NumberIn<std::uint64_t>(data, index);
    case MAT_T_INT32:
      return NumberIn<std::int32_t>(data, index);
    case MAT_T_UINT32:
      return NumberIn<std::uint32_t>(data, index);
    case MAT_T_INT16:
      return NumberIn<std::int16_t>(data, index);
    case MAT_T_UINT16:
    case MAT_T_UTF16:
      return NumberIn<std::uint16_t>(data, index);
    case MAT_T_INT8:
      return NumberIn<std::int8_t>(data, index);
    case MAT_T_UINT8:
    case MAT_T_UTF8:
      return NumberIn<std::uint8_t>(data, index);
    default:
      return std::nan("");
  }
}

const void* DataOf(const matvar_t& variable) {
  if (variable.isComplex == 0 || variable.data == nullptr) return variable.data;
  return static_cast<const mat_complex_split_t*>(variable.data)->Re;
}

std::string RowOfCharacters(const matvar_t& variable, std::size_t row) {
  std::string text;
  const auto size = static_cast<std::size_t>(variable.data_size);
  if (variable.rank != 2 || size == 0) return text;
  const std::size_t rows = variable.dims[0];
  const bool narrow = variable.data_type == MAT_T_UTF8 && rows == 1;
  if (narrow && variable.data != nullptr) {
    text.assign(static_cast<const char*>(variable.data), variable.nbytes);
    return IsUtf8(text) ? text : TextForDisplay(text);
  }
  if (!IsWhole(variable, size)) return text;
  std::string wide;
  for (std::size_t i = 0; i < variable.dims[1]; ++i) {
    const double unit = NumberAt(variable.data_type, variable.data, row + i * rows);
    const auto code = unit >= 0 && unit < 65536 ? static_cast<unsigned>(unit) : 0xFFFDU;
    wide += static_cast<char>(code & 0xFF);
    wide += static_cast<char>(code >> 8);
  }
  AppendUtf16(wide, &text);
  while (!text.empty() && (text.back() == ' ' || text.back() == '\0')) text.pop_back();
  return text;
}

bool MakeDense(const mat_sparse_t& sparse, std::size_t column, std::vector<double>* dense,
               matio_types type) {
  if (column + 1 >= sparse.njc || sparse.jc == nullptr) return false;
  for (std::size_t i = sparse.jc[column]; i < sparse.jc[column + 1]; ++i) {
    if (i >= sparse.nir || i >= sparse.ndata || sparse.ir[i] >= dense->size()) return false;
    (*dense)[sparse.ir[i]] = NumberAt(type, sparse.data, i);
  }
  return true;
}

}  // namespace statrn32
