// The cases of an incomplete sample as data augmentation goes through them.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include <Eigen/Core>

#include "engine/stats/Blocks.h"

namespace stats {

// Continuous: the model's unit is (value - center) / scale. Ordinal: `thresholds`, ascending, cut
// the model's variable into categories; it stands for an underlying variable with center 0 and
// scale 1.
struct AugmentationVariable {
  double center = 0, scale = 1;
  std::vector<double> thresholds;

  bool IsOrdinal() const { return !thresholds.empty(); }
  int CategoryOf(double underlying) const;
};

// Without ordinal variables only cases with missing values are held; of the others the sums are all
// that counts. With ordinal ones every case is held: the variables underlying them are drawn for
// all. Memory: 8 bytes a cell of a held case, and 16 a case.
class CAugmentationSample {
 public:
  explicit CAugmentationSample(std::vector<AugmentationVariable> variables);

  // Cells: values of continuous variables, categories of ordinal ones counted from 0; NaN is
  // missing. Cases without a weight above zero and those without any value are left out. Numbers
  // name the cases.
  void Add(const CaseBlock& block, const std::int64_t* numbers);
  // Brings the cases in the order of their patterns. Nothing is added after it.
  void Finish();

  struct Pattern {
    std::vector<int> observed, missing;
    std::vector<int> ordinal;  // those of `observed` that are
  };
  // Held cases of one pattern, side by side; a factorisation for each.
  struct Segment {
    std::size_t pattern = 0, first = 0, count = 0;
  };
  // Segments that are worked on together: the unit of work and of random numbers. Their borders
  // depend on the cases alone.
  struct Block {
    std::size_t firstSegment = 0, segments = 0;
    std::size_t firstCase = 0, cases = 0;
  };

  int Variables() const { return static_cast<int>(variables_.size()); }
  const AugmentationVariable& Variable(int j) const {
    return variables_[static_cast<std::size_t>(j)];
  }
  bool HasOrdinal() const { return hasOrdinal_; }
  const std::vector<Pattern>& Patterns() const { return patterns_; }
  const std::vector<Segment>& Segments() const { return segments_; }
  const std::vector<Block>& Blocks() const { return blocks_; }

  // Of a held case, counted in the order of the patterns.
  std::size_t Held() const { return weights_.size(); }
  const double* Cells(std::size_t place) const {  // in units of the model; NaN is missing
    return cells_.data() + order_[place] * variables_.size();
  }
  double Weight(std::size_t place) const { return weights_[order_[place]]; }
  bool HasWeights() const { return hasWeights_; }
  // Where the case's first missing value stands among all missing values.
  std::size_t FirstMissing(std::size_t place) const { return firstMissing_[place]; }
  std::size_t MissingValues() const { return missingValues_; }
  // The place of the case with this number; Held() when it is not held.
  std::size_t PlaceOf(std::int64_t number) const;

  double N() const { return n_; }  // sum of weights
  // What never changes: sums of weights times values, and times products, over the observed values
  // (missing ones count 0). Zero with ordinal variables.
  const Eigen::VectorXd& FixedSum() const { return fixedSum_; }
  const Eigen::MatrixXd& FixedProducts() const { return fixedProducts_; }

 private:
  std::size_t PatternOf(const double* cells);
  void AddFixed(const double* cells, double weight);
  void MakeSegments();
  void MakeBlocks();

  std::vector<AugmentationVariable> variables_;
  bool hasOrdinal_ = false;
  bool hasWeights_ = false;
  std::map<std::string, std::size_t> index_;
  std::vector<Pattern> patterns_;
  std::vector<double> cells_;
  std::vector<double> weights_;
  std::vector<std::int64_t> numbers_;  // ascending
  std::vector<std::uint32_t> patternOf_;
  std::vector<std::size_t> order_;
  std::vector<std::size_t> firstMissing_;
  std::size_t missingValues_ = 0;
  std::vector<Segment> segments_;
  std::vector<Block> blocks_;
  std::vector<std::size_t> placeOf_;
  double n_ = 0;
  Eigen::VectorXd fixedSum_;
  Eigen::MatrixXd fixedProducts_;
};

}  // namespace stats
