#include "engine/procedures/SharedChains.h"

#include <utility>

#include "engine/parallel/Parcel.h"

namespace {

using Eigen::Index;
using stats::AugmentationChain;

void PutNumbers(CParcelWriter& to, const double* numbers, std::size_t count) {
  to.Put(static_cast<std::uint64_t>(count));
  to.PutDoubles(numbers, count);
}

void PutVector(CParcelWriter& to, const Eigen::VectorXd& vector) {
  PutNumbers(to, vector.data(), static_cast<std::size_t>(vector.size()));
}

std::vector<double> TakeNumbers(CParcelReader& from) {
  std::vector<double> numbers(static_cast<std::size_t>(from.Take<std::uint64_t>()));
  from.TakeDoubles(numbers.data(), numbers.size());
  return numbers;
}

Eigen::VectorXd TakeVector(CParcelReader& from) {
  const std::vector<double> numbers = TakeNumbers(from);
  return Eigen::Map<const Eigen::VectorXd>(numbers.data(), static_cast<Index>(numbers.size()));
}

void Pack(const AugmentationChain& chain, CParcelWriter& to) {
  to.Put(chain.status);
  PutNumbers(to, chain.watched.data(), chain.watched.size());
  for (const auto& window : chain.windows) {
    PutVector(to, window.average);
    PutVector(to, window.variance);
  }
  PutVector(to, chain.mean);
  PutVector(to, chain.covariance.reshaped());
  PutNumbers(to, chain.imputed.data(), chain.imputed.size());
}

AugmentationChain Unpack(CParcelReader& from) {
  AugmentationChain chain;
  chain.status = from.Take<stats::EStatus>();
  chain.watched = TakeNumbers(from);
  for (auto& window : chain.windows) {
    window.average = TakeVector(from);
    window.variance = TakeVector(from);
  }
  chain.mean = TakeVector(from);
  chain.covariance = TakeVector(from).reshaped(chain.mean.size(), chain.mean.size());
  chain.imputed = TakeNumbers(from);
  return chain;
}

}  // namespace

bool DrawSharedChains(ENGINERUN& run, const stats::CAugmentationSample& sample,
                      const stats::AugmentationStart& start, stats::AugmentationOptions options,
                      std::vector<AugmentationChain>& chains, FAULT& fault) {
  options.part = run.Part();
  options.parts = run.Parts();
  stats::AugmentationResult result = stats::Augment(sample, start, options);
  if (result.stopped) return false;
  chains = std::move(result.chains);
  if (options.parts == 1) return true;
  const auto part = static_cast<std::size_t>(options.part);
  const auto parts = static_cast<std::size_t>(options.parts);
  CParcelWriter mine;
  for (std::size_t chain = part; chain < chains.size(); chain += parts) Pack(chains[chain], mine);
  std::vector<std::string> all;
  if (!run.Exchange(mine.Bytes(), all, fault)) return false;
  for (std::size_t other = 0; other < parts; ++other) {
    if (other == part) continue;
    CParcelReader theirs(all[other]);
    for (std::size_t chain = other; chain < chains.size(); chain += parts)
      chains[chain] = Unpack(theirs);
  }
  return true;
}
