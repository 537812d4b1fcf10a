#include <atomic>
#include <cmath>
#include <stdexcept>
#include <vector>

#include <gtest/gtest.h>

#include "engine/stats/AlignedBuffer.h"
#include "engine/stats/Cancel.h"
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
  stats::CAlignedBuffer x(stats::kLanes * stats::kLanes), y(stats::kLanes * stats::kLanes);
  for (int twice = 0; twice < 2; ++twice) {
    plain.multiply(panel.Data(), panel.Data(), kCases, x.Data(), stats::kLanes);
    active.multiply(panel.Data(), panel.Data(), kCases, y.Data(), stats::kLanes);
  }
  for (int r = 0; r < stats::kLanes; ++r) {
    for (int l = 0; l < stats::kLanes; ++l) {
      double want = 0;
      for (std::int64_t k = 0; k < kCases; ++k)
        want += 2 * panel.Data()[k * stats::kLanes + r] * panel.Data()[k * stats::kLanes + l];
      EXPECT_NEAR(x.Data()[r * stats::kLanes + l], want, 1e-9);
      EXPECT_NEAR(y.Data()[r * stats::kLanes + l], want, 1e-9);
    }
  }
}

const stats::Kernels* const kSets[] = {&stats::generic::kKernels, &stats::ActiveKernels()};

// Every number of rows and columns, beginning in the middle of a panel; what stands beside them
// stays.
TEST(Kernels, MultiplyRowsTakesAnyNumberOfColumns) {
  constexpr std::int64_t kStride = 48, kCases = 13, kRows = stats::kMostRowsAtOnce;
  stats::CAlignedBuffer rows(kRows * kCases), columns(kCases * kStride);
  for (std::int64_t at = 0; at < rows.Count(); ++at) rows.Data()[at] = static_cast<double>(at % 7);
  for (std::int64_t at = 0; at < columns.Count(); ++at)
    columns.Data()[at] = static_cast<double>(at % 11) - 3;
  for (const stats::Kernels* kernels : kSets) {
    for (std::int64_t rowCount : {stats::kRowsAtOnce, kRows}) {
      for (std::int64_t count = 4; count <= kStride - 4; count += 4) {
        stats::CAlignedBuffer result(kRows * kStride);
        kernels->multiplyRows(rows.Data(), kCases, rowCount, columns.Data() + 4, count, kCases,
                              result.Data() + 4, kStride);
        for (std::int64_t r = 0; r < kRows; ++r) {
          for (std::int64_t c = 0; c < kStride; ++c) {
            const bool asked = r < rowCount && c >= 4 && c < count + 4;
            double want = 0;
            for (std::int64_t k = 0; k < kCases && asked; ++k)
              want += rows.Data()[r * kCases + k] * columns.Data()[k * kStride + c];
            ASSERT_EQ(result.Data()[r * kStride + c], want) << count << ": " << r << ' ' << c;
          }
        }
      }
    }
  }
}

TEST(Kernels, CleanTakesOutWhatIsMissingAndInfinite) {
  const double values[] = {-9, 1e300};
  const auto isMissing = [](double x) {
    return !std::isfinite(x) || x == -9 || x == 1e300 || (x >= 50 && x <= 60);
  };
  std::vector<double> cells;
  for (int i = 0; i < 41; ++i)
    cells.push_back(i % 5 == 1 ? -9 : i % 7 == 2 ? -INFINITY : i % 11 == 3 ? NAN : 30 + i);
  for (const stats::Kernels* kernels : kSets) {
    for (std::int64_t count = 0; count <= 41; ++count) {
      std::vector<double> cleaned = cells;
      const auto counts = kernels->clean(cleaned.data(), count, {values, 2, 50, 60});
      std::int64_t missing = 0, infinite = 0;
      for (std::size_t i = 0; i < cells.size(); ++i) {
        const bool within = static_cast<std::int64_t>(i) < count;
        const bool is = isMissing(cells[i]);
        missing += within && is ? 1 : 0;
        infinite += within && std::isinf(cells[i]) ? 1 : 0;
        if (within && is) {
          ASSERT_TRUE(std::isnan(cleaned[i]));
        } else if (!std::isnan(cells[i])) {
          ASSERT_EQ(cleaned[i], cells[i]);
        }
      }
      ASSERT_EQ(counts.missing, missing);
      ASSERT_EQ(counts.infinite, infinite);
    }
  }
}

TEST(Kernels, LogisticAgreesWithTheLibrary) {
  std::vector<double> z = {0, -0.0, 1e-300, -1e-12, 37, -37, 700, -700, 1e6, -1e6};
  for (int i = -500; i < 503; ++i) z.push_back(i / 17.0);
  for (const stats::Kernels* kernels : kSets) {
    std::vector<double> value(z.size()), slope(z.size()), curve(z.size());
    kernels->logistic(z.data(), static_cast<std::int64_t>(z.size()), value.data(), slope.data(),
                      curve.data());
    for (std::size_t i = 0; i < z.size(); ++i) {
      const double small = std::exp(-std::fabs(z[i])), sum = 1 + small;
      const double want = std::min(z[i], 0.0) - std::log1p(small);
      EXPECT_NEAR(value[i], want, 2e-15 * std::fabs(want) + 1e-307) << z[i];
      EXPECT_NEAR(slope[i], (z[i] < 0 ? 1 : small) / sum, 2e-15 * slope[i] + 1e-307) << z[i];
      EXPECT_NEAR(curve[i], -small / (sum * sum), -2e-15 * curve[i] + 1e-307) << z[i];
    }
  }
}

std::atomic<int> asked{0};

TEST(ParallelFor, StopsWhenItIsCancelled) {
  asked = 0;
  stats::SetCancelTest([] { return ++asked > 5; });
  for (const int threads : {1, 3}) {
    std::atomic<int> begun{0};
    EXPECT_THROW(stats::ParallelFor(threads, 1000, [&](std::int64_t) { ++begun; }),
                 stats::Cancelled);
    EXPECT_LE(begun, 5);
  }
  stats::SetCancelTest(nullptr);
}

}  // namespace
