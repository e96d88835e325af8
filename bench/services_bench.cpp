// The services that run most often: the general number format (every printed
// number of every report), the row order and the descriptive statistics
// (every Codebook code and Rowwise row).
#include <benchmark/benchmark.h>

#include <cstring>
#include <memory>
#include <random>
#include <vector>

#include "frame/host_records.h"
#include "frame/module_state.h"
#include "services/descriptive_statistics.h"
#include "services/number_format.h"
#include "services/row_order.h"
#include "services/variables.h"

namespace {

// A zeroed state in slot 0 for the order block, freed at the end.
struct BenchState {
  BenchState() : state(new zv::ProcedureState) {
    std::memset(static_cast<void*>(state.get()), 0, sizeof(zv::ProcedureState));
    zv::gStates[0] = state.get();
  }
  ~BenchState() {
    zv::FreeGlobal(&state->order);
    zv::gStates[0] = nullptr;
  }
  std::unique_ptr<zv::ProcedureState> state;
};

// Values over many magnitudes, a few of them missing, as a report column.
std::vector<double> Column(size_t n, int ties) {
  std::mt19937_64 random(42);
  std::lognormal_distribution<double> draw(0.0, 4.0);
  std::vector<double> values(n);
  for (double& v : values) {
    v = draw(random);
    if (ties) v = std::floor(v);
    if (random() % 50 == 0) v = zv::kMissingValue;
    if (random() % 3 == 0) v = -v;
  }
  return values;
}

void BM_FormatNumber(benchmark::State& state) {
  const std::vector<double> values = Column(4096, 0);
  char buffer[zv::kNumberTextSize];
  size_t i = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(zv::FormatNumber(buffer, values[i++ & 4095], 16));
  }
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_FormatNumber);

void BM_FormatFixed(benchmark::State& state) {
  const std::vector<double> values = Column(4096, 0);
  char buffer[32];
  size_t i = 0;
  for (auto _ : state) {
    zv::FormatFixed(buffer, values[i++ & 4095], 15, 4);
    benchmark::DoNotOptimize(buffer);
  }
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_FormatFixed);

// The trimmed form of the estimate columns, which takes the short path.
void BM_FormatFixedTrimmed(benchmark::State& state) {
  const std::vector<double> values = Column(4096, 0);
  char buffer[32];
  size_t i = 0;
  for (auto _ : state) {
    zv::FormatFixedTrimmed(buffer, values[i++ & 4095], 15, 4);
    benchmark::DoNotOptimize(buffer);
  }
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_FormatFixedTrimmed);

// Argument 0: the values; argument 1: the ties flag (with whole values, so
// that long runs of ties occur).
void BM_SortOrderNumeric(benchmark::State& state) {
  BenchState bench;
  const int ties = static_cast<int>(state.range(1));
  const std::vector<double> values = Column(static_cast<size_t>(state.range(0)), ties);
  for (auto _ : state) {
    benchmark::DoNotOptimize(
        zv::SortOrderNumeric(values.data(), 0, static_cast<int32_t>(values.size()), ties));
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_SortOrderNumeric)
    ->ArgsProduct({{1000, 10000, 100000, 1000000}, {0, 1}})
    ->Unit(benchmark::kMicrosecond);

void BM_ComputeSummary(benchmark::State& state) {
  BenchState bench;
  std::vector<double> values = Column(static_cast<size_t>(state.range(0)), 0);
  for (double& v : values) {
    if (v != zv::kMissingValue) v = std::fabs(v);  // so the geometric mean exists
  }
  double results[zv::kStatisticsRecordSize];
  for (auto _ : state) {
    bench.state->orderReady = 0;  // a fresh sort each time, as Codebook does
    zv::ComputeSummary(values.data(), static_cast<int32_t>(values.size()), zv::kAllStatistics,
                       results, 0);
    benchmark::DoNotOptimize(results);
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_ComputeSummary)
    ->RangeMultiplier(10)
    ->Range(1000, 1000000)
    ->Unit(benchmark::kMicrosecond);

}  // namespace
