// Loading a sheet from CSV text: the survival sheet of the whole-run
// benchmarks (time, censoring flag, a group named by a text) at 1e4, 1e5 and
// 1e6 rows, and a sheet whose code column turns text only in its last row,
// so that the rows before are read a second time.
#include <benchmark/benchmark.h>

#include <random>
#include <string>

#include "zvgrid/sheet.h"

namespace {

std::string SurvivalSheet(int64_t rows, bool lateText) {
  std::mt19937_64 random(7);
  std::exponential_distribution<double> time(0.01);
  const char* groups[] = {"Control", "Low dose", "High dose"};
  std::string text = "time,censored,group,code\n";
  char cell[32];
  for (int64_t r = 0; r < rows; ++r) {
    std::snprintf(cell, sizeof cell, "%.2f", time(random));
    text += cell;
    text += random() % 4 == 0 ? ",0," : ",1,";
    text += groups[random() % 3];
    text += ',';
    text += r + 1 == rows && lateText ? "x" : std::to_string(random() % 1000);
    text += '\n';
  }
  return text;
}

void LoadCsv(benchmark::State& state, bool lateText) {
  const std::string text = SurvivalSheet(state.range(0), lateText);
  std::string error;
  for (auto _ : state) {
    if (!zvgrid::LoadCsvText(text, &error)) state.SkipWithError(error.c_str());
  }
  state.SetComplexityN(state.range(0));
  state.SetItemsProcessed(state.iterations() * state.range(0));
  state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(text.size()));
  zvgrid::ClearSheet();
}

void BM_LoadCsv(benchmark::State& state) {
  LoadCsv(state, false);
}
BENCHMARK(BM_LoadCsv)
    ->RangeMultiplier(10)
    ->Range(10000, 1000000)
    ->Unit(benchmark::kMillisecond)
    ->Complexity(benchmark::oN);

void BM_LoadCsvLateText(benchmark::State& state) {
  LoadCsv(state, true);
}
BENCHMARK(BM_LoadCsvLateText)->Arg(1000000)->Unit(benchmark::kMillisecond);

void BM_SaveCsv(benchmark::State& state) {
  std::string error;
  zvgrid::LoadCsvText(SurvivalSheet(state.range(0), false), &error);
  for (auto _ : state) benchmark::DoNotOptimize(zvgrid::SaveCsvText());
  state.SetItemsProcessed(state.iterations() * state.range(0));
  zvgrid::ClearSheet();
}
BENCHMARK(BM_SaveCsv)->Arg(1000000)->Unit(benchmark::kMillisecond);

}  // namespace
