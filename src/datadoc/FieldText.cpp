#include "datadoc/FieldText.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstring>
#include <optional>

#include "host/ExactPowers.h"
#include "host/Numbers.h"

namespace {

constexpr std::int64_t kMostExactPower = 22;
constexpr int kUsualDecimals = 6;

bool IsDigit(char c) {
  return c >= '0' && c <= '9';
}

bool IsBlank(char c) {
  return static_cast<unsigned char>(c) <= ' ';
}

// Plain digits with at most one point and few enough of them that both the digits and the power of
// ten are exact doubles: their quotient is then the correctly rounded number. False leaves the text
// to the slow way.
bool ReadPlain(const char* at, const char* last, int decimals, double& value) {
  while (at != last && IsBlank(*at)) ++at;
  const bool negative = at != last && *at == '-';
  if (at != last && (*at == '-' || *at == '+')) ++at;
  std::uint64_t digits = 0;
  const char* const begin = at;
  while (at != last && IsDigit(*at)) digits = digits * 10 + static_cast<std::uint64_t>(*at++ - '0');
  std::int64_t count = at - begin;
  std::int64_t places = 0;
  const bool point = at != last && *at == '.';
  if (point) {
    const char* const fraction = ++at;
    while (at != last && IsDigit(*at)) {
      digits = digits * 10 + static_cast<std::uint64_t>(*at++ - '0');
    }
    places = at - fraction;
    count += places;
  }
  if (count == 0 || count > 19 || digits > kExactIntegers) return false;
  if (!point && decimals > 0) places = std::max<std::int64_t>(decimals - (last - at), 0);
  while (at != last && IsBlank(*at)) ++at;
  if (at != last || places > kMostExactPower) return false;
  const double result =
      static_cast<double>(digits) / kPowersOfTen[static_cast<std::size_t>(places)];
  value = negative ? -result : result;
  return true;
}

// The text with its implied point. Blanks between the point and the first digit count as zeros.
CString WithPoint(std::string_view text, int decimals) {
  const auto behind = static_cast<std::size_t>(decimals);
  std::size_t begin = 0;
  while (begin < text.size() && IsBlank(text[begin])) ++begin;
  if (begin < text.size() && (text[begin] == '-' || text[begin] == '+')) ++begin;
  CString result(text);
  if (text.size() - begin >= behind) return result.insert(text.size() - behind, 1, '.');
  const std::size_t zeros = behind - (text.size() - begin);
  return result.insert(begin, "." + CString(zeros, '0'));
}

struct Leading {
  double value;
  const char* end;  // behind the number
};

// from_chars knows no D: the text is read once more with an E in its place.
std::optional<Leading> ReadWithD(const char* first, const char* mark, const char* last) {
  const char* at = mark + 1;
  if (at != last && (*at == '-' || *at == '+')) ++at;
  if (at == last || !IsDigit(*at)) return std::nullopt;
  while (at != last && IsDigit(*at)) ++at;
  CString text(first, at);
  text[static_cast<std::size_t>(mark - first)] = 'e';
  const auto number = ParseNumber(text);
  if (!number) return std::nullopt;
  return Leading{number->value, at};
}

// Text data files are read as far as a number goes, where ParseNumber takes all that could belong
// to one: "1e" is 1 with something behind it here, and no number there.
std::optional<Leading> ReadLeading(std::string_view text) {
  const char* first = text.data();
  const char* const last = first + text.size();
  while (first != last && IsBlank(*first)) ++first;
  const char* digits = first;
  if (digits != last && (*digits == '-' || *digits == '+')) ++digits;
  if (digits != last && *digits == '.') ++digits;
  if (digits == last || !IsDigit(*digits)) return std::nullopt;
  if (*first == '+') ++first;  // from_chars takes no plus sign
  Leading result{0, nullptr};
  const auto read = std::from_chars(first, last, result.value);
  result.end = read.ptr;
  if (read.ec == std::errc::result_out_of_range) {
    const auto number = ParseNumber({first, static_cast<std::size_t>(read.ptr - first)});
    if (!number) return std::nullopt;  // too large
    result.value = number->value;      // too small
  }
  if (result.end != last && (*result.end == 'D' || *result.end == 'd')) {
    if (const auto withD = ReadWithD(first, result.end, last)) return withD;
  }
  return result;
}

double ReadSlowly(std::string_view text, int decimals, FieldState& state) {
  if (std::all_of(text.begin(), text.end(), IsBlank)) {
    state = FieldState::Blank;
    return 0;
  }
  CString pointed;
  if (decimals > 0 && text.find('.') == std::string_view::npos) {
    pointed = WithPoint(text, decimals);
    text = pointed;
  }
  const auto number = ReadLeading(text);
  if (!number) {
    state = FieldState::Text;
    return 0;
  }
  const bool whole = std::all_of(number->end, text.data() + text.size(), IsBlank);
  state = whole ? FieldState::Number : FieldState::Part;
  return number->value;
}

// |value| as a whole number of millionths, where that stands for exactly this double.
bool AsMillionths(double magnitude, std::uint64_t& millionths) {
  constexpr double kMost = 9007199254.0;  // times a million is just below 2^53
  if (!(magnitude < kMost)) return false;
  millionths = static_cast<std::uint64_t>(magnitude * 1e6 + 0.5);
  return static_cast<double>(millionths) / 1e6 == magnitude;
}

// The digits of `number`, at least `least` of them, written so that they end before `end`. Returns
// where they begin.
char* WriteDigits(std::uint64_t number, int least, char* end) {
  char* at = end;
  for (int count = 0; number > 0 || count < least; ++count, number /= 10) {
    *--at = static_cast<char>('0' + number % 10);
  }
  return at;
}

// Digits of a number of millionths cut to `places` decimals; false when that drops a digit.
bool CutMillionths(std::uint64_t& millionths, int places) {
  static constexpr std::array<std::uint64_t, 7> kDropped = {1'000'000, 100'000, 10'000, 1'000,
                                                            100,       10,      1};
  const std::uint64_t divisor = kDropped[static_cast<std::size_t>(places)];
  if (divisor == 1) return true;
  const bool whole = millionths % divisor == 0;
  millionths /= divisor;
  return whole;
}

int DigitsOf(std::uint64_t number) {
  int count = 1;
  for (; number >= 10; number /= 10) ++count;
  return count;
}

// Nearly every value of a data file: a few decimals.
bool WriteMillionths(double value, int width, int decimals, char* out) {
  std::uint64_t millionths = 0;
  if (!AsMillionths(std::fabs(value), millionths)) return false;
  const int sign = std::signbit(value) ? 1 : 0;
  const int room = width - sign - DigitsOf(millionths / 1'000'000) - 1;  // behind the point
  const bool noPoint = room < 0 || (room == 0 && decimals == 0);
  if (room < -1 || (noPoint && decimals > 0)) return false;
  const int places = std::clamp(room, 0, kUsualDecimals);
  if (!CutMillionths(millionths, places)) return false;
  char text[32];
  char* const end = text + sizeof text;
  char* at = end;
  if (places > 0) {
    const std::uint64_t power =
        static_cast<std::uint64_t>(kPowersOfTen[static_cast<std::size_t>(places)]);
    at = WriteDigits(millionths % power, places, at);
    millionths /= power;
  }
  if (!noPoint) *--at = '.';
  at = WriteDigits(millionths, 1, at);
  if (sign != 0) *--at = '-';
  const auto length = static_cast<std::size_t>(end - at);
  const std::size_t blanks = static_cast<std::size_t>(width) - length;
  std::memset(out, ' ', blanks);
  std::memcpy(out + blanks, at, length);
  return true;
}

// The forms that a value can have in a narrow field, tried from the one with the most decimals on.
class FieldForms {
 public:
  FieldForms(double value, int width, int decimals, char* out)
      : value_(value), width_(static_cast<std::size_t>(width)), decimals_(decimals), out_(out) {}

  bool Write() { return WriteFixed() || WritePlain() || WriteImplied() || WriteScientific(); }

 private:
  // With as many decimals as there is room for, with and without a zero before the point.
  bool WriteFixed() {
    const CString whole = Fixed(0);
    for (const std::size_t spare : {std::size_t{1}, std::size_t{0}}) {
      const std::size_t taken = whole.size() + spare;
      if (width_ <= taken) continue;
      // More decimals than those of the smallest double say nothing.
      const int places = static_cast<int>(std::min<std::size_t>(width_ - taken, 1074));
      CString text = Fixed(places);
      if (spare == 0) RemoveZeroBeforePoint(text);
      if (Put(text)) return true;
    }
    return false;
  }

  bool WritePlain() { return Put(Fixed(0) + (decimals_ > 0 ? "." : "")); }

  // "12345" where two decimals are implied.
  bool WriteImplied() {
    if (decimals_ < 1 || decimals_ > kMostExactPower) return false;
    const double scaled =
        std::nearbyint(value_ * kPowersOfTen[static_cast<std::size_t>(decimals_)]);
    if (!(std::fabs(scaled) < static_cast<double>(kExactIntegers))) return false;
    char text[32];
    const auto end =
        std::to_chars(text, text + sizeof text, scaled, std::chars_format::fixed, 0).ptr;
    return Put(CString(text, end));
  }

  // "1.5e-7", or "15e-8" which is shorter where the mantissa's first digit is its last.
  bool WriteScientific() {
    char buffer[40];
    const auto end =
        std::to_chars(buffer, buffer + sizeof buffer, value_, std::chars_format::scientific).ptr;
    const CString text(buffer, end);
    const std::size_t mark = text.find('e');
    CString mantissa = text.substr(0, mark);
    int exponent = std::stoi(text.substr(mark + 1));
    if (mantissa.find('.') == CString::npos && decimals_ > 0) mantissa += '.';
    if (Put(mantissa + 'e' + std::to_string(exponent))) return true;
    const std::size_t point = mantissa.find('.');
    if (point == CString::npos) return false;
    exponent -= static_cast<int>(mantissa.size() - point - 1);
    mantissa.erase(point, 1);
    return Put(mantissa + (decimals_ > 0 ? ".e" : "e") + std::to_string(exponent));
  }

  CString Fixed(int places) const {
    std::array<char, 1500> buffer;
    const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value_,
                                   std::chars_format::fixed, places)
                         .ptr;
    return {buffer.data(), end};
  }

  static void RemoveZeroBeforePoint(CString& text) {
    const std::size_t zero = text.front() == '-' ? 1 : 0;
    if (text[zero] == '0') text.erase(zero, 1);
  }

  // Into the field, if it fits there and reads back.
  bool Put(const CString& text) {
    if (text.size() > width_) return false;
    std::memset(out_, ' ', width_ - text.size());
    std::memcpy(out_ + width_ - text.size(), text.data(), text.size());
    FieldState state = FieldState::Number;
    return ReadField({out_, width_}, decimals_, state) == value_ && state == FieldState::Number;
  }

  double value_;
  std::size_t width_;
  int decimals_;
  char* out_;
};

// With the usual decimals where they stand for exactly this double, as for every large one;
// otherwise with the fewest digits that do.
void AppendLong(double value, CString& out) {
  char text[340];  // the largest double has 309 digits before the point
  char* const end = text + sizeof text;
  auto written = std::to_chars(text, end, value, std::chars_format::fixed, kUsualDecimals);
  double read = 0;
  std::from_chars(text, written.ptr, read);
  if (read != value) written = std::to_chars(text, end, value);
  out.append(text, written.ptr);
}

}  // namespace

double ReadField(std::string_view text, int decimals, FieldState& state) {
  double value = 0;
  state = FieldState::Number;
  if (ReadPlain(text.data(), text.data() + text.size(), decimals, value)) return value;
  return ReadSlowly(text, decimals, state);
}

bool WriteField(double value, int width, int decimals, char* out) {
  if (!std::isfinite(value)) return false;
  return WriteMillionths(value, width, decimals, out) ||
         FieldForms(value, width, decimals, out).Write();
}

bool AppendFreeNumber(double value, CString& out) {
  if (!std::isfinite(value)) return false;
  char text[32];
  char* const end = text + sizeof text;
  std::uint64_t millionths = 0;
  if (!AsMillionths(std::fabs(value), millionths)) {
    AppendLong(value, out);
    return true;
  }
  char* at = WriteDigits(millionths % 1'000'000, kUsualDecimals, end);
  *--at = '.';
  at = WriteDigits(millionths / 1'000'000, 1, at);
  if (std::signbit(value)) *--at = '-';
  out.append(at, end);
  return true;
}
