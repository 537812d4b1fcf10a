#include <atomic>
#include <cmath>
#include <stdexcept>
#include <vector>

#include <gtest/gtest.h>

#include "engine/stats/AlignedBuffer.h"
#include "engine/stats/Kernels.h"
#include "engine/stats/Parallel.h"

namespace {

TEST(ParallelFor, DoesEachPieceOnce) {
  for (const int threads : {-1, 0, 1, 2, 7}) {
    for (const std::int64_t count : {0, 1, 2, 1000}) {
      std::vector<std::atomic<int>> done(static_cast<std::size_t>(count));
      stats::ParallelFor(threads, count,
                         [&](std::int64_t i) { ++done[static_cast<std::size_t>(i)]; });
      for (const auto& times : done) ASSERT_EQ(times, 1);
    }
  }
}

TEST(ParallelFor, HandsOnAnException) {
  for (const int threads : {1, 3}) {
    std::atomic<int> begun{0};
    EXPECT_THROW(stats::ParallelFor(threads, 100'000,
                                    [&](std::int64_t i) {
                                      ++begun;
                                      if (i == 5) throw std::runtime_error("five");
                                    }),
                 std::runtime_error);
    EXPECT_LT(begun, 100'000);
  }
}

// Both sets of kernels on the same data; missing cells, and a tile that is added to.
TEST(Kernels, WideAndPlainOnesAgree) {
  constexpr std::int64_t kCases = 37;
  stats::CAlignedBuffer panel(kCases * stats::kLanes), weights(kCases), shift(stats::kLanes);
  for (std::int64_t at = 0; at < panel.Count(); ++at)
    panel.Data()[at] = at % 11 == 3 ? NAN : std::sin(static_cast<double>(at)) * 100;
  for (std::int64_t k = 0; k < kCases; ++k) weights.Data()[k] = static_cast<double>(1 + k % 3);
  for (int l = 0; l < stats::kLanes; ++l) shift.Data()[l] = l;
  const auto& plain = stats::generic::kKernels;
  const auto& active = stats::ActiveKernels();
  stats::PanelSums a, b;
  plain.sum(panel.Data(), weights.Data(), kCases, shift.Data(), a);
  active.sum(panel.Data(), weights.Data(), kCases, shift.Data(), b);
  stats::PanelPowers p, q;
  plain.powers(panel.Data(), weights.Data(), kCases, shift.Data(), shift.Data(), a, p);
  active.powers(panel.Data(), weights.Data(), kCases, shift.Data(), shift.Data(), b, q);
  for (int l = 0; l < stats::kLanes; ++l) {
    EXPECT_EQ(a.cases[l], b.cases[l]);
    EXPECT_EQ(a.maximum[l], b.maximum[l]);
    EXPECT_NEAR(a.sum[l], b.sum[l], 1e-11);
    EXPECT_EQ(p.atMinimum[l], q.atMinimum[l]);
    EXPECT_NEAR(p.power[3][l], q.power[3][l], 1e-12 * p.power[3][l]);
  }
  for (std::int64_t at = 0; at < panel.Count(); ++at)
    if (std::isnan(panel.Data()[at])) panel.Data()[at] = 0;
  stats::CAlignedBuffer x(4 * stats::kLanes), y(4 * stats::kLanes);
  for (int twice = 0; twice < 2; ++twice) {
    plain.multiply(panel.Data() + 4, panel.Data(), kCases, x.Data(), stats::kLanes);
    active.multiply(panel.Data() + 4, panel.Data(), kCases, y.Data(), stats::kLanes);
  }
  for (int r = 0; r < 4; ++r) {
    for (int l = 0; l < stats::kLanes; ++l) {
      double want = 0;
      for (std::int64_t k = 0; k < kCases; ++k)
        want += 2 * panel.Data()[k * stats::kLanes + 4 + r] * panel.Data()[k * stats::kLanes + l];
      EXPECT_NEAR(x.Data()[r * stats::kLanes + l], want, 1e-9);
      EXPECT_NEAR(y.Data()[r * stats::kLanes + l], want, 1e-9);
    }
  }
}

}  // namespace
