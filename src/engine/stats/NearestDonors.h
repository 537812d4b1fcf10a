// Imputation by matching: which cases are most like a case that lacks a value.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace stats {

// The donors of one variable, found by their matching values. Donors with the same matching values
// are joined, and the joined ones stand in a k-d tree (J. L. Bentley, Communications of the ACM 18,
// 1975, 509-517), so that with few distinct matching values, or few matching variables, a search
// does not look at every donor.
class CNearestDonors {
 public:
  // `dimensions` matching values each.
  explicit CNearestDonors(std::size_t dimensions) : dimensions_(dimensions) {}

  // Matching values without gaps, the donor's value and its weight above zero.
  void Add(const double* matching, double value, double weight);
  // Builds the tree. Nothing is added after it.
  void Finish();

  std::size_t Donors() const { return values_.size(); }
  // Weighted variance of all donors' values, divisor n - 1; 0 when n is not above 1.
  double Variance() const { return all_.Variance(); }

  // The donors at the smallest distance (sum of squared differences; all that differ from it by
  // rounding only). May be called from several threads; at least one donor.
  struct Match {
    double distance = 0;
    std::int64_t donors = 0;
    double mean = 0;
    double variance = 0;  // as above, of these donors
  };
  Match Find(const double* matching) const;

 private:
  // Sums of values about the mean of all donors.
  struct Sums {
    std::int64_t cases = 0;
    double n = 0, sum = 0, squares = 0;
    void Add(const Sums& other);
    double Variance() const;
  };
  struct Node {
    std::size_t first = 0, end = 0;  // points
    std::size_t dimension = 0;
    double split = 0;  // points of the left child are at most this far, those of the right at least
    std::size_t left = 0, right = 0;  // children; 0: none
  };

  void JoinEqual();
  std::size_t Build(std::size_t first, std::size_t end);
  double Distance(const double* matching, std::size_t point) const;
  void FindSmallest(std::size_t node, const double* matching, double& smallest) const;
  void Collect(std::size_t node, const double* matching, double reach, Sums& sums) const;

  std::size_t dimensions_;
  std::vector<double> matching_;  // of donors; after Finish of points
  std::vector<double> values_, weights_;
  double center_ = 0;
  std::vector<Sums> points_;
  std::vector<std::size_t> order_;  // points as the nodes count them
  std::vector<Node> nodes_;
  Sums all_;
};

}  // namespace stats
