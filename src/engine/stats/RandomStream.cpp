#include "engine/stats/RandomStream.h"

#include <bit>
#include <cmath>

namespace stats {

namespace {

std::uint64_t Mix(std::uint64_t x) {
  x = (x ^ (x >> 30U)) * 0xBF58476D1CE4E5B9U;
  x = (x ^ (x >> 27U)) * 0x94D049BB133111EBU;
  return x ^ (x >> 31U);
}

constexpr std::uint64_t kStep = 0x9E3779B97F4A7C15U;

}  // namespace

CRandomStream::CRandomStream(std::initializer_list<std::uint64_t> key) {
  std::uint64_t mixed = 0;
  for (const std::uint64_t part : key) mixed = Mix((mixed ^ part) + kStep);
  for (std::uint64_t& word : state_) word = Mix(mixed += kStep);
}

std::uint64_t CRandomStream::Bits() {
  const std::uint64_t result = std::rotl(state_[1] * 5, 7) * 9;
  const std::uint64_t shifted = state_[1] << 17U;
  state_[2] ^= state_[0];
  state_[3] ^= state_[1];
  state_[1] ^= state_[2];
  state_[0] ^= state_[3];
  state_[2] ^= shifted;
  state_[3] = std::rotl(state_[3], 45);
  return result;
}

double CRandomStream::Uniform() {
  return (static_cast<double>(Bits() >> 11U) + 0.5) * 0x1p-53;
}

double CRandomStream::Normal() {
  if (hasSpare_) {
    hasSpare_ = false;
    return spare_;
  }
  double x = 0, y = 0, square = 0;
  do {
    x = 2 * Uniform() - 1;
    y = 2 * Uniform() - 1;
    square = x * x + y * y;
  } while (square >= 1 || square == 0);
  const double factor = std::sqrt(-2 * std::log(square) / square);
  spare_ = y * factor;
  hasSpare_ = true;
  return x * factor;
}

double CRandomStream::ChiSquare(double df) {
  const double shape = df / 2;
  const double d = (shape < 1 ? shape + 1 : shape) - 1.0 / 3;
  const double c = 1 / std::sqrt(9 * d);
  for (;;) {
    const double x = Normal();
    const double root = 1 + c * x;
    if (root <= 0) continue;
    const double v = root * root * root;
    if (std::log(Uniform()) >= 0.5 * x * x + d - d * v + d * std::log(v)) continue;
    // Shapes below 1 are drawn with 1 more and brought back.
    return 2 * d * v * (shape < 1 ? std::pow(Uniform(), 1 / shape) : 1);
  }
}

double CRandomStream::TailWithin(double low, double high) {
  const double root = std::sqrt(low * low + 4);
  const double rate = (low + root) / 2;
  // Where the interval is short an even proposal is accepted more often than an exponential one.
  const double longest = 2 * std::exp(0.5 + (low * low - low * root) / 4) / (low + root);
  if (high - low <= longest) {
    for (;;) {
      const double x = low + (high - low) * Uniform();
      if (Uniform() <= std::exp((low * low - x * x) / 2)) return x;
    }
  }
  for (;;) {
    const double x = low - std::log(Uniform()) / rate;
    if (x < high && Uniform() <= std::exp(-(x - rate) * (x - rate) / 2)) return x;
  }
}

double CRandomStream::NormalWithin(double low, double high) {
  if (low > 0) return TailWithin(low, high);
  if (high < 0) return -TailWithin(-high, -low);
  constexpr double kWide = 2.5066282746310002;  // sqrt(2 pi)
  if (high - low > kWide) {
    for (;;) {
      const double x = Normal();
      if (x >= low && x <= high) return x;
    }
  }
  for (;;) {
    const double x = low + (high - low) * Uniform();
    if (Uniform() <= std::exp(-x * x / 2)) return x;
  }
}

}  // namespace stats
