#include "statrn32/AccessValues.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "statrn32/ByteReader.h"

namespace statrn32 {
namespace {

// Days from the epoch; the time of day counts forward, also before the epoch.
double MomentOf(double stored) {
  const double day = std::trunc(stored);
  return day + std::fabs(stored - day);
}

// A sign, then four words of 32 bits, the most significant first.
double DecimalOf(std::string_view bytes, unsigned scale) {
  constexpr unsigned kNegative = 0x80;
  CByteReader in(bytes);
  const bool negative = (in.U8() & kNegative) != 0;
  long double number = 0;
  for (int i = 0; i < 4; ++i) number = number * 4294967296.0L + in.U32();
  number /= std::pow(10.0L, static_cast<int>(scale));
  return static_cast<double>(negative ? -number : number);
}

}  // namespace

bool IsAccessText(ACCESS_TYPE type) {
  return type == ACCESS_TYPE::Text || type == ACCESS_TYPE::Memo || type == ACCESS_TYPE::Guid;
}

bool IsAccessValue(ACCESS_TYPE type) {
  switch (type) {
    case ACCESS_TYPE::Logical:
    case ACCESS_TYPE::Byte:
    case ACCESS_TYPE::Int16:
    case ACCESS_TYPE::Int32:
    case ACCESS_TYPE::Money:
    case ACCESS_TYPE::Float:
    case ACCESS_TYPE::Double:
    case ACCESS_TYPE::Moment:
    case ACCESS_TYPE::Decimal:
    case ACCESS_TYPE::Int64:
      return true;
    default:
      return IsAccessText(type);
  }
}

bool AccessNumber(const ACCESS_COLUMN& column, std::string_view bytes, double* number) {
  constexpr double kMoneyUnits = 10000;
  CByteReader in(bytes);
  switch (column.type) {
    case ACCESS_TYPE::Byte:
      *number = in.U8();
      break;
    case ACCESS_TYPE::Int16:
      *number = in.I16();
      break;
    case ACCESS_TYPE::Int32:
      *number = in.I32();
      break;
    case ACCESS_TYPE::Int64:
      *number = static_cast<double>(in.I64());
      break;
    case ACCESS_TYPE::Money:
      *number = static_cast<double>(in.I64()) / kMoneyUnits;
      break;
    case ACCESS_TYPE::Float:
      *number = in.F32();
      break;
    case ACCESS_TYPE::Double:
      *number = in.F64();
      break;
    case ACCESS_TYPE::Moment:
      *number = MomentOf(in.F64());
      break;
    default:
      *number = DecimalOf(bytes, column.scale);
      return bytes.size() >= column.bytes;
  }
  return in.Ok();
}

std::string GuidText(std::string_view bytes) {
  CByteReader in(bytes);
  char text[40];
  const std::uint32_t first = in.U32();
  const unsigned second = in.U16();
  const unsigned third = in.U16();
  in.SetBigEndian(true);
  const unsigned fourth = in.U16();
  const auto last = static_cast<unsigned long long>(in.Unsigned(6));
  std::snprintf(text, sizeof text, "{%08X-%04X-%04X-%04X-%012llX}", first, second, third, fourth,
                last);
  return text;
}

}  // namespace statrn32
