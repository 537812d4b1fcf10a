// Random numbers that depend on a seed and the name of a stream only: one stream for each sample,
// so that who draws it, and when, makes no difference.
#pragma once

#include <cstdint>

namespace stats {

// A Weyl sequence through a mixing function (G. L. Steele, D. Lea and C. H. Flood, OOPSLA 2014,
// 453-472); the start is mixed from the stream's numbers. Any two streams are apart for all
// practical lengths: the chance that 10,000 streams of a million numbers touch is below 1e-5.
class CSampleStream {
 public:
  CSampleStream(std::uint64_t seed, std::uint64_t stream, std::uint64_t substream)
      : state_(Mix(Mix(Mix(seed + kStep) ^ stream) + kStep + substream)) {}

  std::uint64_t Bits() { return Mix(state_ += kStep); }

  // Uniform on [0, 1), 53 bits.
  double Uniform() { return static_cast<double>(Bits() >> 11U) * 0x1p-53; }

 private:
  static constexpr std::uint64_t kStep = 0x9E3779B97F4A7C15U;

  static std::uint64_t Mix(std::uint64_t x) {
    x = (x ^ (x >> 30U)) * 0xBF58476D1CE4E5B9U;
    x = (x ^ (x >> 27U)) * 0x94D049BB133111EBU;
    return x ^ (x >> 31U);
  }

  std::uint64_t state_;
};

}  // namespace stats
