// What the Host frees when it discards a record that crossed into the module:
// the movable blocks and counted texts the module left in its fields. The
// Host, the test fixture and the benchmark host all discard records this way.
#pragma once

#include "frame/host_records.h"

namespace zvhost {

// Frees the bindings' data blocks and expression texts, the row order, the
// Host's own block and the pane texts. Handles that no longer name a block
// are left alone; every field is 0 afterwards.
void ReleaseStateBlocks(zv::ProcedureState& state);

// Frees the text item, string, number and title blocks of a graph pane.
void ReleasePaneRecordBlocks(zv::PaneRecord& record);

}  // namespace zvhost
