#include "engine/stats/NearestDonors.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>

namespace stats {

void CNearestDonors::Sums::Add(const Sums& other) {
  cases += other.cases;
  n += other.n;
  sum += other.sum;
  squares += other.squares;
}

double CNearestDonors::Sums::Variance() const {
  return n > 1 ? std::max(0.0, squares - sum * sum / n) / (n - 1) : 0;
}

void CNearestDonors::Add(const double* matching, double value, double weight) {
  matching_.insert(matching_.end(), matching, matching + dimensions_);
  values_.push_back(value);
  weights_.push_back(weight);
}

void CNearestDonors::Finish() {
  double n = 0;
  for (std::size_t i = 0; i < values_.size(); ++i) {
    n += weights_[i];
    center_ += (values_[i] - center_) * weights_[i] / n;
  }
  JoinEqual();
  if (!points_.empty()) Build(0, points_.size());
}

void CNearestDonors::JoinEqual() {
  std::vector<std::size_t> sorted(values_.size());
  std::iota(sorted.begin(), sorted.end(), std::size_t{0});
  const auto row = [this](std::size_t i) { return matching_.data() + i * dimensions_; };
  std::sort(sorted.begin(), sorted.end(), [&](std::size_t a, std::size_t b) {
    const int order = [&] {
      for (std::size_t j = 0; j < dimensions_; ++j) {
        if (row(a)[j] != row(b)[j]) return row(a)[j] < row(b)[j] ? -1 : 1;
      }
      return 0;
    }();
    return order != 0 ? order < 0 : a < b;
  });
  std::vector<double> joined;
  for (const std::size_t i : sorted) {
    const double deviation = values_[i] - center_;
    const Sums one{1, weights_[i], weights_[i] * deviation, weights_[i] * deviation * deviation};
    all_.Add(one);
    const bool same =
        !joined.empty() && std::equal(row(i), row(i) + dimensions_,
                                      joined.end() - static_cast<std::ptrdiff_t>(dimensions_));
    if (same) {
      points_.back().Add(one);
      continue;
    }
    joined.insert(joined.end(), row(i), row(i) + dimensions_);
    points_.push_back(one);
  }
  matching_ = std::move(joined);
  order_.resize(points_.size());
  std::iota(order_.begin(), order_.end(), std::size_t{0});
}

std::size_t CNearestDonors::Build(std::size_t first, std::size_t end) {
  constexpr std::size_t kLeaf = 16;
  const std::size_t at = nodes_.size();
  nodes_.push_back({first, end, 0, 0, 0, 0});
  if (end - first <= kLeaf) return at;
  const auto cell = [this](std::size_t point, std::size_t j) {
    return matching_[point * dimensions_ + j];
  };
  std::size_t widest = 0;
  double width = -1;
  for (std::size_t j = 0; j < dimensions_; ++j) {
    double low = std::numeric_limits<double>::infinity(), high = -low;
    for (std::size_t k = first; k < end; ++k) {
      low = std::min(low, cell(order_[k], j));
      high = std::max(high, cell(order_[k], j));
    }
    if (high - low > width) {
      width = high - low;
      widest = j;
    }
  }
  const std::size_t middle = first + (end - first) / 2;
  const auto begin = order_.begin();
  std::nth_element(
      begin + static_cast<std::ptrdiff_t>(first), begin + static_cast<std::ptrdiff_t>(middle),
      begin + static_cast<std::ptrdiff_t>(end), [&](std::size_t a, std::size_t b) {
        return cell(a, widest) != cell(b, widest) ? cell(a, widest) < cell(b, widest) : a < b;
      });
  nodes_[at].dimension = widest;
  nodes_[at].split = cell(order_[middle], widest);
  const std::size_t left = Build(first, middle);
  const std::size_t right = Build(middle, end);
  nodes_[at].left = left;
  nodes_[at].right = right;
  return at;
}

double CNearestDonors::Distance(const double* matching, std::size_t point) const {
  const double* const other = matching_.data() + point * dimensions_;
  double distance = 0;
  for (std::size_t j = 0; j < dimensions_; ++j)
    distance += (matching[j] - other[j]) * (matching[j] - other[j]);
  return distance;
}

void CNearestDonors::FindSmallest(std::size_t at, const double* matching, double& smallest) const {
  const Node& node = nodes_[at];
  if (node.left == 0) {
    for (std::size_t k = node.first; k < node.end; ++k)
      smallest = std::min(smallest, Distance(matching, order_[k]));
    return;
  }
  const double beyond = matching[node.dimension] - node.split;
  FindSmallest(beyond < 0 ? node.left : node.right, matching, smallest);
  if (beyond * beyond <= smallest)
    FindSmallest(beyond < 0 ? node.right : node.left, matching, smallest);
}

void CNearestDonors::Collect(std::size_t at, const double* matching, double reach,
                             Sums& sums) const {
  const Node& node = nodes_[at];
  if (node.left == 0) {
    for (std::size_t k = node.first; k < node.end; ++k) {
      if (Distance(matching, order_[k]) <= reach) sums.Add(points_[order_[k]]);
    }
    return;
  }
  const double beyond = matching[node.dimension] - node.split;
  if (beyond <= 0 || beyond * beyond <= reach) Collect(node.left, matching, reach, sums);
  if (beyond >= 0 || beyond * beyond <= reach) Collect(node.right, matching, reach, sums);
}

CNearestDonors::Match CNearestDonors::Find(const double* matching) const {
  constexpr double kRounding = 1e-10;  // relative
  Match match;
  match.distance = std::numeric_limits<double>::infinity();
  FindSmallest(0, matching, match.distance);
  Sums sums;
  Collect(0, matching, match.distance * (1 + kRounding), sums);
  match.donors = sums.cases;
  match.mean = center_ + sums.sum / sums.n;
  match.variance = sums.Variance();
  return match;
}

}  // namespace stats
