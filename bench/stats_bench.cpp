// The statistical functions that run most often: the quantile searches
// (evaluated many times per plot and per table of critical values) and the
// single-rule cumulative of the F and Gamma distributions (once per
// observation in the goodness-of-fit tests).
#include <benchmark/benchmark.h>

#include "stats/distributions.h"
#include "stats/special_functions.h"

namespace {

constexpr double kProbabilities[] = {0.001, 0.05, 0.5, 0.95, 0.999};

void BM_ChiSquareQuantile(benchmark::State& state) {
  const double df = static_cast<double>(state.range(0));
  for (auto _ : state) {
    for (double p : kProbabilities) benchmark::DoNotOptimize(zv::ChiSquareQuantile(p, df));
  }
  state.SetItemsProcessed(state.iterations() * std::size(kProbabilities));
}
BENCHMARK(BM_ChiSquareQuantile)->Arg(1)->Arg(5)->Arg(30)->Arg(99);

void BM_BetaQuantile(benchmark::State& state) {
  const double a = static_cast<double>(state.range(0)) / 2;
  const double b = static_cast<double>(state.range(1)) / 2;
  for (auto _ : state) {
    for (double p : kProbabilities) benchmark::DoNotOptimize(zv::BetaQuantile(p, a, b));
  }
  state.SetItemsProcessed(state.iterations() * std::size(kProbabilities));
}
BENCHMARK(BM_BetaQuantile)->Args({3, 5})->Args({10, 40})->Args({1, 20});

void BM_FQuantile(benchmark::State& state) {
  const double df1 = static_cast<double>(state.range(0));
  const double df2 = static_cast<double>(state.range(1));
  for (auto _ : state) {
    for (double p : kProbabilities) benchmark::DoNotOptimize(zv::FQuantile(p, df1, df2));
  }
  state.SetItemsProcessed(state.iterations() * std::size(kProbabilities));
}
BENCHMARK(BM_FQuantile)->Args({3, 20})->Args({10, 100});

void BM_StudentQuantile(benchmark::State& state) {
  const double df = static_cast<double>(state.range(0));
  for (auto _ : state) {
    for (double p : kProbabilities) benchmark::DoNotOptimize(zv::StudentQuantile(p, df));
  }
  state.SetItemsProcessed(state.iterations() * std::size(kProbabilities));
}
BENCHMARK(BM_StudentQuantile)->Arg(4)->Arg(30);

// The discrete inverse: a search upward from 0 with running sums.
void BM_PoissonInverse(benchmark::State& state) {
  zv::DistributionParameters r{{static_cast<double>(state.range(0)), 0, 0, 0}};
  zv::PrepareDistributionParameters(zv::kDistPoisson, r.p, 1);
  for (auto _ : state) {
    for (double p : kProbabilities) {
      benchmark::DoNotOptimize(zv::DistributionInverse(zv::kDistPoisson, 0, r.p, p));
    }
  }
  state.SetItemsProcessed(state.iterations() * std::size(kProbabilities));
}
BENCHMARK(BM_PoissonInverse)->Arg(4)->Arg(150);

void BM_QuadratureCdf(benchmark::State& state) {
  const int32_t id = static_cast<int32_t>(state.range(0));
  zv::DistributionParameters r{
      {id == zv::kDistGamma ? 2.5 : 6.0, id == zv::kDistGamma ? 1.5 : 12.0, 0, 0}};
  zv::PrepareDistributionParameters(id, r.p, 1);
  double x = 0.1;
  for (auto _ : state) {
    benchmark::DoNotOptimize(zv::QuadratureCdf(id, 0, r.p, x));
    x = x < 5 ? x + 0.1 : 0.1;
  }
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_QuadratureCdf)->Arg(zv::kDistGamma)->Arg(zv::kDistF);

// The Gamma inverse: a chi-square search whose cumulative is the series.
void BM_GammaInverse(benchmark::State& state) {
  zv::DistributionParameters r{{2.5, 1.5, 0, 0}};
  zv::PrepareDistributionParameters(zv::kDistGamma, r.p, 1);
  for (auto _ : state) {
    for (double p : kProbabilities) {
      benchmark::DoNotOptimize(zv::DistributionInverse(zv::kDistGamma, 0, r.p, p));
    }
  }
  state.SetItemsProcessed(state.iterations() * std::size(kProbabilities));
}
BENCHMARK(BM_GammaInverse);

}  // namespace
