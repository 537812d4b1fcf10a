// The asymptotic covariance matrix of polychoric correlations; declared in AsymptoticCovariance.h.
#include <algorithm>
#include <array>
#include <cmath>

#include "engine/stats/AsymptoticCovariance.h"
#include "engine/stats/CodeChunk.h"
#include "engine/stats/InfluenceValues.h"
#include "engine/stats/Parallel.h"
#include "engine/stats/SymmetricProduct.h"

namespace stats {

namespace {

using Values = std::vector<double>;

struct PairLookup {
  int row = 0, column = 0, width = 0;
  Values influence;
};

std::vector<int> CategoriesOf(const CPairTables& tables) {
  std::vector<int> categories;
  categories.reserve(static_cast<std::size_t>(tables.Variables()));
  for (int j = 0; j < tables.Variables(); ++j) categories.push_back(tables.Categories(j));
  return categories;
}

}  // namespace

struct CPolychoricAcov::State {
  State(const CPairTables& tables, EDeletion deletion, int wantedThreads)
      : threads(wantedThreads),
        chunk(CategoriesOf(tables), deletion),
        product(static_cast<int>(PairIndex(tables.Variables(), 0)), wantedThreads) {}

  void PreparePair(const CPairTables& tables, const PolychoricMatrix& matrix, int i, int j);
  void FillPanel(int panel, std::int64_t from, std::int64_t cases, double* to) const;

  int threads;
  AsymptoticCovarianceResult result;
  CCodeChunk chunk;
  CSymmetricProduct product;
  std::vector<PairLookup> pairs;
};

void CPolychoricAcov::State::PreparePair(const CPairTables& tables, const PolychoricMatrix& matrix,
                                         int i, int j) {
  pairs[static_cast<std::size_t>(PairIndex(i, j))] = {i, j, tables.Categories(j) + 1,
                                                      PolychoricInfluence(tables, matrix, i, j)};
}

CPolychoricAcov::CPolychoricAcov(const CPairTables& tables, const PolychoricMatrix& matrix,
                                 EDeletion deletion, int threads)
    : state_(std::make_unique<State>(tables, deletion, threads)) {
  AsymptoticCovarianceResult& result = state_->result;
  const int variables = tables.Variables();
  result.status = variables > 1 ? EStatus::Ok : EStatus::BadArgument;
  for (int i = 0; i < variables; ++i) {
    for (int j = 0; j < i; ++j) {
      const PolychoricResult& pair = matrix.pairs[static_cast<std::size_t>(PairIndex(i, j))];
      result.n = result.n == 0 ? pair.n : std::min(result.n, pair.n);
      if (pair.status == EStatus::Ok || result.status != EStatus::Ok) continue;
      result.status = pair.status;
      result.variable = i;
      result.other = j;
    }
  }
  if (result.status != EStatus::Ok) return;
  state_->pairs.resize(matrix.pairs.size());
  ParallelFor(threads, variables, [&](std::int64_t piece) {
    const int i = variables - 1 - static_cast<int>(piece);
    for (int j = 0; j < i; ++j) state_->PreparePair(tables, matrix, i, j);
  });
}
CPolychoricAcov::~CPolychoricAcov() = default;
CPolychoricAcov::CPolychoricAcov(CPolychoricAcov&&) noexcept = default;
CPolychoricAcov& CPolychoricAcov::operator=(CPolychoricAcov&&) noexcept = default;

void CPolychoricAcov::State::FillPanel(int panel, std::int64_t from, std::int64_t cases,
                                       double* to) const {
  for (int l = 0; l < kLanes; ++l) {
    const auto at = static_cast<std::size_t>(panel * kLanes + l);
    if (at >= pairs.size()) {
      for (std::int64_t k = 0; k < cases; ++k) to[k * kLanes + l] = 0;
      continue;
    }
    const PairLookup& pair = pairs[at];
    const std::uint8_t* row = chunk.Column(pair.row) + from;
    const std::uint8_t* column = chunk.Column(pair.column) + from;
    const double* influence = pair.influence.data();
    for (std::int64_t k = 0; k < cases; ++k)
      to[k * kLanes + l] = influence[row[k] * pair.width + column[k]];
  }
  if (!chunk.Weights()) return;
  for (std::int64_t k = 0; k < cases; ++k) {
    const double root = std::sqrt(chunk.Weights()[from + k]);
    for (int l = 0; l < kLanes; ++l) to[k * kLanes + l] *= root;
  }
}

void CPolychoricAcov::Add(const CodeBlock& block) {
  if (state_->result.status != EStatus::Ok) return;
  CCodeChunk& chunk = state_->chunk;
  chunk.CheckShape(block);
  for (std::int64_t at = 0; at < block.cases; at += CCodeChunk::kCases) {
    chunk.Take(block, at, std::min(at + CCodeChunk::kCases, block.cases));
    for (std::int64_t from = 0; from < chunk.Cases(); from += CSymmetricProduct::kChunkCases) {
      const std::int64_t cases = std::min(CSymmetricProduct::kChunkCases, chunk.Cases() - from);
      state_->product.Add(
          cases, [&](int panel, double* to) { state_->FillPanel(panel, from, cases, to); });
    }
  }
}

AsymptoticCovarianceResult CPolychoricAcov::Result() const {
  AsymptoticCovarianceResult result = state_->result;
  if (result.status == EStatus::Ok) result.matrix = state_->product.Matrix();
  return result;
}

std::int64_t CPolychoricAcov::MemoryFor(int variables) {
  return CSymmetricProduct::MemoryFor(static_cast<int>(PairIndex(variables, 0)));
}

}  // namespace stats
