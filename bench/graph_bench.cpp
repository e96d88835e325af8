// Graph panes: the parts that grow with the data. A whole build with n
// points given as list B (interleaved by EndGraph into list A), and a build
// with n legend texts alternating with n free texts; each includes the chart
// library's copy of the graph.
#include <benchmark/benchmark.h>

#include <cstring>
#include <memory>
#include <string>

#include "frame/module_state.h"
#include "services/axes.h"
#include "services/graph_pane.h"
#include "services/variables.h"
#include "zvchart/zvchart.h"

namespace {

struct Pane {
  std::unique_ptr<zv::HostRecord> host = std::make_unique<zv::HostRecord>();
  std::unique_ptr<zv::PaneRecord> record = std::make_unique<zv::PaneRecord>();
  zv::PaneWindow window{};
  Pane() {
    std::memset(static_cast<void*>(host.get()), 0, sizeof(zv::HostRecord));
    std::memset(static_cast<void*>(record.get()), 0, sizeof(zv::PaneRecord));
    host->nextGraphId = 1;
    host->graphKeepId = -1;
    zv::gHost = host.get();
    zv::gCurrentPane = record.get();
  }
  ~Pane() {
    ChartRelease(record->graphId);
    for (Handle* h : {&record->textItems, &record->textStrings, &record->textNumbers,
                      &record->titleLines, &record->titleLengths}) {
      zv::FreeGlobal(h);
    }
    zv::gCurrentPane = nullptr;
    zv::gHost = nullptr;
  }
};

void BM_GraphOfPairs(benchmark::State& state) {
  const auto n = static_cast<size_t>(state.range(0));
  Pane pane;
  for (auto _ : state) {
    zv::BeginGraph(0, static_cast<int32_t>(n));
    zv::SetAxisAuto(1, 0, static_cast<double>(n), 0);
    zv::SetAxisAuto(2, 0, 1, 0);
    zv::ComputeFrame();
    zv::DrawAxisLabels(1, 1, 1);
    zv::DrawAxisLabels(2, 1, 1);
    zv::GraphLists& lists = zv::CurrentGraphLists();
    lists.elementTable = {static_cast<int32_t>(n), 0, 1};
    lists.pairX.resize(n);
    lists.pairY.resize(n);
    lists.pairId.resize(n);
    for (size_t i = 0; i < n; ++i) {
      lists.pairX[i] = static_cast<double>(i);
      lists.pairY[i] = 0.5;
      lists.pairId[i] = static_cast<double>(i);
    }
    zv::EndGraph(&pane.window, 0);
  }
  state.SetItemsProcessed(static_cast<int64_t>(state.iterations() * n));
}
BENCHMARK(BM_GraphOfPairs)->Arg(1000)->Arg(100000);

void BM_GraphOfLegendTexts(benchmark::State& state) {
  const int n = static_cast<int>(state.range(0));
  Pane pane;
  for (auto _ : state) {
    // A pane's first graph each time, so that no text is taken back; the
    // two kinds alternate, the worst case for keeping strings in item order.
    zv::FreeGlobal(&pane.record->textItems);
    zv::BeginGraph(0, 0);
    for (int i = 0; i < n; ++i) {
      zv::AddText("Group " + std::to_string(i), zv::kTextLegend, 1.06, 0.9 - 0.01 * i, 0);
      zv::AddText("x", zv::kTextFree, 1.06, 0.9 - 0.01 * i, 0);
    }
    zv::EndGraph(&pane.window, 0);
  }
  state.SetItemsProcessed(static_cast<int64_t>(state.iterations() * n));
}
BENCHMARK(BM_GraphOfLegendTexts)->Arg(100)->Arg(2000);

}  // namespace
