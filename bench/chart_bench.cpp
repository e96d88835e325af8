// Drawing many points: a dot diagram's markers and a long polyline, written as
// SVG text and painted as PNG, at 1e4 to 1e6 points.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <random>
#include <vector>

#include "zvchart/chart_host.h"

namespace {

zvchart::StoredGraph EmptyPlot(double xLow, double xSpan, double yLow, double ySpan) {
  zvchart::StoredGraph g;
  std::vector<int32_t> words(zv::kIntegerOptionWords);
  std::vector<double> reals(zv::kRealOptionCount);
  ChartGetDefaults(words.data(), reals.data());
  zvchart::OptionsToRecord(words.data(), reals.data(), g.record);
  const double low[2] = {xLow, yLow}, span[2] = {xSpan, ySpan};
  for (int axis = 0; axis < 2; ++axis) {
    g.record.axes[axis].type = axis + 1;
    g.record.axes[axis].visible = 1;
    g.record.scale[axis] = {low[axis], span[axis]};
    g.record.ticks[axis][0] = 5;
  }
  g.pointWidth = 3;
  return g;
}

// Stacks of dots as the dot diagram lays them out: skewed weights to one
// decimal, each value's dots at heights 0.5, 1.5, ...
zvchart::StoredGraph DotDiagram(int64_t n) {
  std::mt19937_64 random(2842);
  std::lognormal_distribution<double> draw(5.15, 0.17);
  std::vector<double> x(n);
  for (double& v : x) v = std::round(draw(random) * 10.0) / 10.0;
  std::sort(x.begin(), x.end());
  zvchart::Polyline dots;
  dots.pen = 0;
  dots.symbol = 1;
  double height = 0, tallest = 0;
  for (int64_t i = 0; i < n; ++i) {
    height = i > 0 && x[i] == x[i - 1] ? height + 1 : 0;
    tallest = std::max(tallest, height);
    dots.values.insert(dots.values.end(), {x[i], height + 0.5, static_cast<double>(i)});
  }
  dots.points = static_cast<int32_t>(n);
  zvchart::StoredGraph g = EmptyPlot(x.front(), x.back() - x.front(), 0, tallest + 1);
  g.pointCount = dots.points;
  g.elements.push_back(std::move(dots));
  return g;
}

// A random walk of n steps drawn as one line.
zvchart::StoredGraph Walk(int64_t n) {
  std::mt19937_64 random(5764);
  std::normal_distribution<double> step(0, 1);
  zvchart::Polyline line;
  line.pen = 1;
  double y = 0, low = 0, high = 0;
  for (int64_t i = 0; i < n; ++i) {
    y += step(random);
    low = std::min(low, y);
    high = std::max(high, y);
    line.values.insert(line.values.end(), {static_cast<double>(i), y, -1});
  }
  line.points = static_cast<int32_t>(n);
  zvchart::StoredGraph g = EmptyPlot(0, static_cast<double>(n), low, high - low);
  g.pointCount = line.points;
  g.elements.push_back(std::move(line));
  return g;
}

template <zvchart::StoredGraph (*Make)(int64_t)>
void BM_Svg(benchmark::State& bench) {
  const zvchart::StoredGraph g = Make(bench.range(0));
  size_t bytes = 0;
  for (auto _ : bench) {
    std::string svg = zvchart::RenderSvg(g);
    bytes = svg.size();
    benchmark::DoNotOptimize(svg.data());
  }
  bench.counters["svg_bytes"] = static_cast<double>(bytes);
  bench.SetItemsProcessed(bench.iterations() * bench.range(0));
}

template <zvchart::StoredGraph (*Make)(int64_t)>
void BM_Png(benchmark::State& bench) {
  const zvchart::StoredGraph g = Make(bench.range(0));
  const std::string path = (std::filesystem::temp_directory_path() / "zv_chart_bench.png").string();
  for (auto _ : bench) {
    if (!zvchart::RenderPng(g, path)) bench.SkipWithError("the PNG was not written");
  }
  std::filesystem::remove(path);
  bench.SetItemsProcessed(bench.iterations() * bench.range(0));
}

BENCHMARK(BM_Svg<DotDiagram>)
    ->Name("BM_SvgDots")
    ->RangeMultiplier(10)
    ->Range(10000, 1000000)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Png<DotDiagram>)
    ->Name("BM_PngDots")
    ->RangeMultiplier(10)
    ->Range(10000, 1000000)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Svg<Walk>)
    ->Name("BM_SvgLine")
    ->RangeMultiplier(10)
    ->Range(10000, 1000000)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Png<Walk>)
    ->Name("BM_PngLine")
    ->RangeMultiplier(10)
    ->Range(10000, 1000000)
    ->Unit(benchmark::kMillisecond);

}  // namespace
