#include "engine/stats/PolyserialModel.h"

#include <limits>

namespace stats {

namespace {

// Derivatives of NormalCdf(u) by r, and of it and of that derivative by z and by the threshold.
struct FullEdge {
  double u = 0, byR = 0;
  double byZ = 0, byRz = 0;
  double byThreshold = 0, byRThreshold = 0;
};

FullEdge FullEdgeAt(double threshold, double z, double r) {
  FullEdge edge;
  edge.u = threshold;
  if (!std::isfinite(threshold)) return edge;
  const double q = (1 - r) * (1 + r);
  const double root = std::sqrt(q);
  edge.u = (threshold - r * z) / root;
  const double u1 = (threshold * r - z) / (q * root);
  const double density = NormalDensity(edge.u);
  edge.byR = density * u1;
  edge.byThreshold = density / root;
  edge.byRThreshold = density * (r / q - edge.u * u1) / root;
  edge.byZ = -r * edge.byThreshold;
  edge.byRz = density * (edge.u * u1 * r - 1 / q) / root;
  return edge;
}

}  // namespace

PolyserialEdge PolyserialEdgeAt(double threshold, double z, double r) {
  if (!std::isfinite(threshold)) return {threshold, 0, 0};
  const double q = (1 - r) * (1 + r);
  const double root = std::sqrt(q);
  const double u = (threshold - r * z) / root;
  const double u1 = (threshold * r - z) / (q * root);
  const double u2 = (threshold + 3 * r * (threshold * r - z) / q) / (q * root);
  const double density = NormalDensity(u);
  return {u, density * u1, density * (u2 - u * u1 * u1)};
}

PolyserialScore PolyserialScoreAt(double lower, double upper, double z, double r) {
  const FullEdge low = FullEdgeAt(lower, z, r);
  const FullEdge high = FullEdgeAt(upper, z, r);
  const double p = NormalInterval(low.u, high.u);
  PolyserialScore score;
  if (!(p > std::numeric_limits<double>::min())) return score;
  score.score = (high.byR - low.byR) / p;
  score.byZ = (high.byRz - low.byRz - score.score * (high.byZ - low.byZ)) / p;
  score.byLower = -(low.byRThreshold - score.score * low.byThreshold) / p;
  score.byUpper = (high.byRThreshold - score.score * high.byThreshold) / p;
  return score;
}

}  // namespace stats
