// Random numbers that depend on a key and on nothing else.
#pragma once

#include <cstdint>
#include <initializer_list>

namespace stats {

// A sequence of random numbers for each key, for example seed, imputation, iteration and block of
// cases: whoever draws first on which thread makes no difference. Numbers of 64 bits by D. Blackman
// and S. Vigna's xoshiro256** (ACM Transactions on Mathematical Software 47, 2021, 36), its state
// from the key by repeated mixing. To make one costs about as much as ten numbers.
class CRandomStream {
 public:
  explicit CRandomStream(std::initializer_list<std::uint64_t> key);

  std::uint64_t Bits();
  double Uniform();  // on (0, 1), the ends left out
  double Normal();   // standard (G. Marsaglia and T. A. Bray, SIAM Review 6, 1964, 260-264)
  // Degrees of freedom above 0, whole or not (G. Marsaglia and W. W. Tsang, ACM Transactions on
  // Mathematical Software 26, 2000, 363-372).
  double ChiSquare(double df);
  // Standard normal on the interval, low < high; either may be infinite (C. P. Robert, Statistics
  // and Computing 5, 1995, 121-125).
  double NormalWithin(double low, double high);

 private:
  double TailWithin(double low, double high);  // low above 0

  std::uint64_t state_[4];
  double spare_ = 0;  // of the pair that Normal makes
  bool hasSpare_ = false;
};

}  // namespace stats
