// The product-limit procedure on large sheets: Begin (loading the three
// columns and the whole computation) plus all six panes, pane 1 alone, the
// row order by radix and by comparison sort, and the two passes
// whose direct forms grow with the square of the data, and Life2 with many
// groups.
#include <benchmark/benchmark.h>

#include <cmath>
#include <memory>
#include <numeric>
#include <random>
#include <string>
#include <vector>

#include "frame/host_records.h"
#include "protocol/exports.h"
#include "protocol/families.h"
#include "support/bench_host.h"
#include "survival/group_tests.h"
#include "survival/life2.h"
#include "survival/product_limit.h"
#include "survival/survival_order.h"
#include "zvgrid/sheet.h"
#include "zvgrid/zvgrid.h"

namespace {

// Remission-like times: three arms with exponential times of means 20, 30
// and 45, kept to two decimals (so there are ties), about a third withdrawn.
void LoadTrialSheet(int32_t n) {
  std::mt19937_64 random(1963);
  std::vector<double> time(n), censored(n);
  std::vector<std::string> arm(n);
  const char* const kArms[] = {"Control", "Low dose", "High dose"};
  const double kMeans[] = {20.0, 30.0, 45.0};
  for (int32_t i = 0; i < n; ++i) {
    const int a = static_cast<int>(random() % 3);
    std::exponential_distribution<double> draw(1.0 / kMeans[a]);
    time[i] = std::ceil(draw(random) * 100.0) / 100.0;
    censored[i] = random() % 3 == 0 ? 1.0 : 0.0;
    arm[i] = kArms[a];
  }
  zvgrid::ClearSheet();
  zvgrid::AddNumericColumn("Time", std::move(time));
  zvgrid::AddNumericColumn("Censored", std::move(censored));
  zvgrid::AddTextColumn("Arm", std::move(arm));
}

// A Life2 analysis of Time, Censored and Arm on n rows.
struct Analysis {
  explicit Analysis(int32_t n) {
    LoadTrialSheet(n);
    host = std::make_unique<zvbench::BenchHost>(
        zv::kLife2Family, std::initializer_list<const char*>{"Time", "Censored", "Arm"});
  }
  std::unique_ptr<zvbench::BenchHost> host;
};

// Begin plus the six panes, as the Host calls them for a new analysis.
void BM_Life2BeginAndPanes(benchmark::State& bench) {
  Analysis analysis(static_cast<int32_t>(bench.range(0)));
  for (auto _ : bench) {
    Life2Begin(0, 0, 0);
    for (int32_t item : {1, 2, 3, 8, 9, 10}) {
      Life2Item(analysis.host->pane.get(), 0, item, analysis.host->record.get(), 0);
    }
    if (analysis.host->state->status != 0) bench.SkipWithError("the analysis failed");
  }
  bench.SetItemsProcessed(bench.iterations() * bench.range(0));
}
BENCHMARK(BM_Life2BeginAndPanes)
    ->RangeMultiplier(10)
    ->Range(10'000, 1'000'000)
    ->Unit(benchmark::kMillisecond);

// Pane 1 alone (the estimates of every row), on an analysis already run.
void BM_Life2SummaryText(benchmark::State& bench) {
  Analysis analysis(static_cast<int32_t>(bench.range(0)));
  Life2Begin(0, 0, 0);
  for (auto _ : bench) {
    benchmark::DoNotOptimize(zv::Life2SummaryText(0).size());
  }
  bench.SetItemsProcessed(bench.iterations() * bench.range(0));
}
BENCHMARK(BM_Life2SummaryText)
    ->RangeMultiplier(10)
    ->Range(10'000, 1'000'000)
    ->Unit(benchmark::kMillisecond);

// The survival row order of the trial sheet's columns in three groups.
// Argument 1: 1 for the radix sort, 0 for the comparison sort.
void BM_OrderSurvivalRows(benchmark::State& bench) {
  const int32_t n = static_cast<int32_t>(bench.range(0));
  std::mt19937_64 random(3);
  std::vector<double> time(n), censor(n);
  std::vector<int32_t> group(n);
  for (int32_t i = 0; i < n; ++i) {
    time[i] = std::ceil(std::exponential_distribution<double>(0.03)(random) * 100.0) / 100.0;
    censor[i] = random() % 3 == 0 ? 1.0 : 0.0;
    group[i] = static_cast<int32_t>(random() % 3);
  }
  std::vector<zv::SurvivalSortKey> keys(2 * static_cast<size_t>(n));
  std::vector<int32_t> order(n);
  zv::SurvivalSortKey* spare = bench.range(1) != 0 ? keys.data() + n : nullptr;
  for (auto _ : bench) {
    zv::OrderSurvivalRowsArrays(n, time.data(), censor.data(), group.data(), keys.data(),
                                order.data(), spare);
    benchmark::DoNotOptimize(order.data());
  }
  bench.SetItemsProcessed(bench.iterations() * n);
}
BENCHMARK(BM_OrderSurvivalRows)
    ->ArgsProduct({{10'000, 100'000, 1'000'000}, {0, 1}})
    ->Unit(benchmark::kMillisecond);

// The computation alone, on columns already loaded.
void BM_Life2Prepare(benchmark::State& bench) {
  Analysis analysis(static_cast<int32_t>(bench.range(0)));
  Life2Begin(0, 0, 0);
  for (auto _ : bench) {
    zv::Life2Prepare(0, 0);
  }
  bench.SetItemsProcessed(bench.iterations() * bench.range(0));
}
BENCHMARK(BM_Life2Prepare)
    ->RangeMultiplier(10)
    ->Range(10'000, 1'000'000)
    ->Unit(benchmark::kMillisecond);

// Begin on 10,000 rows in G groups, as when an identifier column is picked
// as the group: the group comparison dominates, with G x G covariances.
void BM_Life2ManyGroups(benchmark::State& bench) {
  const int32_t n = 10'000;
  const int32_t groups = static_cast<int32_t>(bench.range(0));
  LoadTrialSheet(n);
  std::vector<std::string> patient(n);
  for (int32_t i = 0; i < n; ++i) patient[i] = "P" + std::to_string(i % groups);
  zvgrid::AddTextColumn("Patient", std::move(patient));
  zvbench::BenchHost host(zv::kLife2Family,
                          std::initializer_list<const char*>{"Time", "Censored", "Patient"});
  for (auto _ : bench) {
    Life2Begin(0, 0, 0);
    if (host.state->status != 0) bench.SkipWithError("the analysis failed");
  }
  bench.SetComplexityN(groups);
}
BENCHMARK(BM_Life2ManyGroups)
    ->Arg(10)
    ->Arg(100)
    ->Arg(300)
    ->Arg(1000)
    ->Unit(benchmark::kMillisecond);

// One group of distinct times, a third withdrawn, in survival order.
struct SortedGroup {
  explicit SortedGroup(int32_t n) : time(n), censor(n), rows(n) {
    std::mt19937_64 random(7);
    for (int32_t i = 0; i < n; ++i) {
      time[i] = 1.0 + i;
      censor[i] = random() % 3 == 0 ? 1.0 : 0.0;
    }
    std::iota(rows.begin(), rows.end(), 0);
  }
  std::vector<double> time, censor;
  std::vector<int32_t> rows;
};

// The error of the mean: the direct form is quadratic, the sweep linear.
void BM_MeanErrorDirect(benchmark::State& bench) {
  const int32_t n = static_cast<int32_t>(bench.range(0));
  SortedGroup g(n);
  std::vector<int32_t> atRisk(n);
  std::vector<double> survival(n), error(n), hazard(n);
  const zv::SurvivalGroup group{g.rows.data(), n, g.time.data(), g.censor.data()};
  zv::EstimateProductLimit(group, {atRisk.data(), survival.data(), error.data(), hazard.data()});
  for (auto _ : bench) {
    benchmark::DoNotOptimize(zv::MeanSurvivalErrorDirect(group, survival.data()));
  }
  bench.SetComplexityN(n);
}
BENCHMARK(BM_MeanErrorDirect)->RangeMultiplier(4)->Range(1024, 16384)->Complexity();

void BM_MeanErrorSweep(benchmark::State& bench) {
  const int32_t n = static_cast<int32_t>(bench.range(0));
  SortedGroup g(n);
  std::vector<int32_t> atRisk(n);
  std::vector<double> survival(n), error(n), hazard(n), scratch(n);
  const zv::SurvivalGroup group{g.rows.data(), n, g.time.data(), g.censor.data()};
  zv::EstimateProductLimit(group, {atRisk.data(), survival.data(), error.data(), hazard.data()});
  for (auto _ : bench) {
    benchmark::DoNotOptimize(zv::MeanSurvivalErrorSweep(group, survival.data(), scratch.data()));
  }
  bench.SetComplexityN(n);
}
BENCHMARK(BM_MeanErrorSweep)->RangeMultiplier(4)->Range(1024, 16384)->Complexity();

// The group comparison's sweep on three groups of distinct times.
void BM_GroupTests(benchmark::State& bench) {
  const int32_t n = static_cast<int32_t>(bench.range(0));
  SortedGroup g(n);
  // Rows i, i + 3, ... form group i % 3; in order by group, then time.
  std::vector<int32_t> order(n);
  int32_t sizes[3] = {0, 0, 0};
  for (int32_t i = 0; i < n; ++i) ++sizes[i % 3];
  int32_t at[3] = {0, sizes[0], sizes[0] + sizes[1]};
  for (int32_t i = 0; i < n; ++i) order[at[i % 3]++] = i;
  const zv::SurvivalSample sample{order.data(), g.time.data(), g.censor.data(), sizes, 3};
  for (auto _ : bench) {
    double scores[6] = {}, covariances[18] = {};
    zv::GroupSweepEntry entries[3];
    int32_t lists[9];
    const zv::GroupTestSums sums{scores, scores + 3, covariances, covariances + 9};
    zv::AccumulateGroupTests(sample, {entries, lists}, sums);
    benchmark::DoNotOptimize(scores);
  }
  bench.SetComplexityN(n);
}
BENCHMARK(BM_GroupTests)->RangeMultiplier(4)->Range(1024, 16384)->Complexity();

}  // namespace
