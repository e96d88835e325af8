// The dot diagram on large sheets: Begin (loading the column, its summary
// and the sort) plus the summary and graph panes, under both stacking rules.
#include <benchmark/benchmark.h>

#include <cmath>
#include <memory>
#include <random>
#include <vector>

#include "charts/dot_diagram.h"
#include "protocol/exports.h"
#include "protocol/families.h"
#include "support/bench_host.h"
#include "zvgrid/sheet.h"

namespace {

// Weights of a skewed population, to one decimal, so that values repeat.
void LoadWeights(int32_t n) {
  std::mt19937_64 random(2842);
  std::lognormal_distribution<double> draw(5.15, 0.17);
  std::vector<double> weight(n);
  for (double& w : weight) w = std::round(draw(random) * 10.0) / 10.0;
  zvgrid::ClearSheet();
  zvgrid::AddNumericColumn("Weight", std::move(weight));
}

// Argument 0: rows; argument 1: 0 for a stack per distinct value, else the
// number of classes.
void BM_DotDiagramBeginAndPanes(benchmark::State& bench) {
  LoadWeights(static_cast<int32_t>(bench.range(0)));
  zvbench::BenchHost host(zv::kDotDiagramFamily, {"Weight"});
  zv::Set(*host.state, zv::kDotClasses, static_cast<int32_t>(bench.range(1)));
  for (auto _ : bench) {
    DotDiagramBegin(0, 0, 0);
    for (int32_t item : {1, 8}) DotDiagramItem(host.pane.get(), 0, item, host.record.get(), 0);
    if (host.state->status != 0) bench.SkipWithError("the analysis failed");
  }
  bench.SetItemsProcessed(bench.iterations() * bench.range(0));
}
BENCHMARK(BM_DotDiagramBeginAndPanes)
    ->ArgsProduct({{10'000, 100'000, 1'000'000}, {0, 50}})
    ->Unit(benchmark::kMillisecond);

}  // namespace
