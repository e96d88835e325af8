// The advice library: a short text of advice for a pane.
#pragma once

#include <cstdint>

namespace zv {
struct ProcedureState;
}

// Writes the advice for pane `item` of the analysis into buffer (at most size
// bytes with the terminator). graph is 1 for a graph pane, 0 for a report.
void CounselWrite(zv::ProcedureState* state, int32_t item, char* buffer, int32_t size, int32_t zero,
                  int32_t graph);
int32_t CounselPaneWidth();  // width of a report pane in characters

// Host side: the function the advice library asks for the module's own
// interpretation of a pane (the module's CallKeel4Interpret export).
using CounselInterpreter = int32_t (*)(zv::ProcedureState* state, char* output, int32_t item);
void CounselSetInterpreter(CounselInterpreter interpreter);
