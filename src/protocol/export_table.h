// The module's exports: every name the Host finds in the library, with its
// ordinal where the Host knows one. The build turns the ZV_EXPORT lines and
// the family list into the linker's version script, and a test compares the
// library's dynamic symbol table with this table, so a name here and the
// library cannot disagree.
//
// Each line is ZV_EXPORT(name, ordinal); the family entry points, expanded
// from the family list, have no fixed ordinal (0).
// clang-format off
#ifndef ZV_EXPORT
#error "define ZV_EXPORT(name, ordinal) before including export_table.h"
#endif
ZV_EXPORT(FilterDllMsg, 2)
ZV_EXPORT(ProcessDllIdle, 3)
ZV_EXPORT(IsKeel4Loaded, 4)
ZV_EXPORT(CallKeel4Interpret, 5)
ZV_EXPORT(Keel4SetAddedText, 92)
// clang-format on

#include "protocol/family_entries.h"

#define ZV_EXPORT_ENTRY(name) ZV_EXPORT(name, 0)
#define ZV_FAMILY(Name, entries) ZV_FAMILY_ENTRY_NAMES_##entries(Name, ZV_EXPORT_ENTRY)
#include "protocol/family_list.h"
#undef ZV_FAMILY
#undef ZV_EXPORT_ENTRY
