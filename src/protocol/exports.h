// Every export of the module with its prototype, so that a definition that
// disagrees with what the Host calls cannot compile. The family entry points
// come from the family list; export_table.h lists the same names for the
// linker.
#pragma once

#include <cstdint>

#include "frame/host_records.h"
#include "protocol/family_entries.h"

ZV_API int32_t FilterDllMsg(const WinMsg* message);
ZV_API int32_t ProcessDllIdle();
ZV_API int32_t IsKeel4Loaded(zv::HostHelpRecord* help, char* adviceBuffer, int32_t adviceEnabled);
ZV_API int32_t CallKeel4Interpret(zv::ProcedureState* state, char* output, int32_t item);
ZV_API void Keel4SetAddedText(const char* text, int32_t flag);

#define ZV_FAMILY(Name, entries) ZV_DECLARE_FAMILY_ENTRIES_##entries(Name)
#include "protocol/family_list.h"
#undef ZV_FAMILY
