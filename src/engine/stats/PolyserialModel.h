// The categories of an ordinal variable given a continuous one, under a bivariate normal
// distribution.
#pragma once

#include <cmath>

#include "engine/stats/Distributions.h"

namespace stats {

// A threshold given z: u = (threshold - r z) / sqrt(1 - r^2), and derivatives of NormalCdf(u) by r;
// 0 at an infinite threshold.
struct PolyserialEdge {
  double u = 0;
  double slope = 0, curve = 0;
};

PolyserialEdge PolyserialEdgeAt(double threshold, double z, double r);

// The derivative of the log probability of a category by r, and this score's own derivatives by z
// and by the two thresholds of the category.
struct PolyserialScore {
  double score = 0;
  double byZ = 0, byLower = 0, byUpper = 0;
};

PolyserialScore PolyserialScoreAt(double lower, double upper, double z, double r);

}  // namespace stats
