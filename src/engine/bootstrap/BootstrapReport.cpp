#include "engine/bootstrap/BootstrapReport.h"

#include <cmath>

#include "engine/procedures/ProcedureReport.h"
#include "engine/stats/Parallel.h"
#include "engine/stats/Resampling.h"

namespace {

// Intervals of fewer samples say little.
constexpr std::int64_t kFewSamples = 200;

double ScaleOf(const BOOTSTRAPSAMPLES& samples) {
  return std::sqrt(static_cast<double>(samples.draws) / samples.n);
}

bool IsWhole(const BOOTSTRAPSAMPLES& samples) {
  return std::llround(samples.n) == samples.draws;
}

void WriteFailures(CReport& report, const BOOTSTRAPSAMPLES& samples) {
  if (samples.failures == 0) return;
  report.Warning(std::to_string(samples.failures) + " of " + std::to_string(samples.samples) +
                 " samples have no estimates and are left out (of files: -999999). The first is "
                 "sample " +
                 std::to_string(samples.firstFailed) + ": " + samples.firstCause + '.');
}

std::vector<double> SampledValues(const BOOTSTRAPSAMPLES& samples, std::size_t estimate) {
  std::vector<double> values;
  values.reserve(static_cast<std::size_t>(samples.samples - samples.failures));
  for (std::int64_t s = 0; s < samples.samples; ++s) {
    if (samples.failed[static_cast<std::size_t>(s)] == 0) {
      values.push_back(samples.Value(s, estimate));
    }
  }
  return values;
}

std::vector<CString> RowOf(const CReport& report, const CString& name, double estimate,
                           const stats::BootstrapSummary& summary) {
  if (summary.status != stats::EStatus::Ok) return {name, report.Number(estimate)};
  std::vector<CString> row = {name};
  for (const double value : {estimate, summary.bias, summary.standardError, summary.percentile.from,
                             summary.percentile.to}) {
    row.push_back(report.Estimate(value, summary.standardError));
  }
  for (const double value : {summary.corrected.from, summary.corrected.to})
    row.push_back(summary.hasCorrected ? report.Estimate(value, summary.standardError) : ".");
  return row;
}

// Of every parameter, in order; what no sample can change is not summed up.
std::vector<stats::BootstrapSummary> Summaries(const ENGINERUN& run,
                                               const std::vector<ESTIMATES>& whole,
                                               const BOOTSTRAPSAMPLES& samples) {
  std::vector<const ESTIMATES::PARAMETER*> parameters;
  for (const ESTIMATES& one : whole) {
    for (const auto& parameter : one.parameters) parameters.push_back(&parameter);
  }
  std::vector<stats::BootstrapSummary> summaries(parameters.size());
  stats::ParallelFor(run.threads, static_cast<std::int64_t>(summaries.size()),
                     [&, scale = ScaleOf(samples)](std::int64_t k) {
                       const auto at = static_cast<std::size_t>(k);
                       if (parameters[at]->error == 0) return;
                       summaries[at] = stats::SummariseSamples(parameters[at]->value,
                                                               SampledValues(samples, at), scale);
                     });
  return summaries;
}

}  // namespace

void WriteBootstrapHeading(ENGINERUN& run, const CString& title, const BOOTSTRAPSAMPLES& samples) {
  CReport& report = run.report;
  report.Section(title);
  CFactTable facts;
  facts.Add("Bootstrap samples", std::to_string(samples.samples));
  facts.Add("Cases to draw from", CReport::Count(samples.n));
  facts.Add("Cases of a sample, drawn with replacement", std::to_string(samples.draws));
  facts.Add("Seed", std::to_string(static_cast<std::int64_t>(run.seed)));
  if (samples.failures > 0) {
    facts.Add("Samples without estimates", std::to_string(samples.failures));
  }
  facts.Write(report);
  report.Gap();
  report.Paragraph(
      "Bias is the mean of the samples minus the estimate, s.e. the standard error, their standard "
      "deviation. The 95% intervals go from 2.5% to 97.5% of the samples; those marked BC are "
      "corrected for bias.");
  if (!IsWhole(samples)) {
    report.Gap();
    report.Paragraph(
        "The samples are " + std::string(samples.draws < samples.n ? "smaller" : "larger") +
        " than the data: their deviations from the estimate are multiplied by the root "
        "of " +
        std::to_string(samples.draws) + " / " + CReport::Count(samples.n) +
        " (the bias by that share), so that they hold for all cases.");
  }
  report.Gap();
  report.Paragraph("For the samples " + std::to_string((samples.bytes >> 20) + 1) +
                   " MB of cases were held in memory.");
  WriteFailures(report, samples);
  if (samples.samples - samples.failures < kFewSamples) {
    report.Warning("Intervals from " + std::to_string(samples.samples - samples.failures) +
                   " samples are rough; 1000 and more are usual.");
  }
}

void WriteBootstrapTables(ENGINERUN& run, const std::vector<ESTIMATES>& whole,
                          const BOOTSTRAPSAMPLES& samples) {
  CReport& report = run.report;
  const std::vector<stats::BootstrapSummary> summaries = Summaries(run, whole, samples);
  std::size_t at = 0;
  for (const ESTIMATES& one : whole) {
    TABLE table;
    table.columns = {{"", true},      {"Estimate", false}, {"Bias", false},    {"s.e.", false},
                     {"2.5%", false}, {"97.5%", false},    {"BC 2.5%", false}, {"BC 97.5%", false}};
    for (const auto& parameter : one.parameters) {
      const stats::BootstrapSummary& summary = summaries[at++];
      if (parameter.error == 0) continue;
      table.rows.push_back(RowOf(report, parameter.name, parameter.value, summary));
    }
    if (table.rows.empty()) continue;
    report.Subsection(one.title);
    report.Table(table);
  }
}
