// The Host's side of one analysis in Slot 0, for the benchmarks: the records
// with their virtual tables, the module started once, and the family's
// option defaults and variable expressions stored as Setup and the Host
// leave them. The sheet is loaded by the caller first.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <memory>
#include <vector>

#include "frame/host_records.h"
#include "protocol/families.h"

namespace zvbench {

struct BenchHost {
  // `expressions` go to bindings 0, 1, ... in order; the select stays empty.
  BenchHost(const zv::FamilyInfo& family, std::initializer_list<const char*> expressions);
  ~BenchHost();
  BenchHost(const BenchHost&) = delete;
  BenchHost& operator=(const BenchHost&) = delete;

  std::unique_ptr<zv::HostHelpRecord> help;
  std::unique_ptr<zv::HostRecord> host;
  std::unique_ptr<zv::HostView> view;
  std::unique_ptr<zv::PaneWindow> pane;
  std::unique_ptr<zv::PaneRecord> record;
  std::unique_ptr<zv::ProcedureState> state;
  std::vector<char> advice;
};

}  // namespace zvbench
