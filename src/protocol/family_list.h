// The families built into this module, one line each, in the form
//   ZV_FAMILY(Name, entries)
// Name is the prefix of the entry points and of the family's row, kNameFamily.
// entries is 8 for the full set (Dialog, Setup, Begin, BeginAgain, Item, Opts,
// Vsave, RedoItem1) or 6 for the short forms without Vsave and RedoItem1 that
// Custom has. The export prototypes and definitions, the export table, the
// linker's version script and the interpretation dispatch are all generated
// from these lines: a new family adds its line here and nothing else in frame.
//
// The build reads the lines with a regular expression: keep one per line.
// clang-format off
#ifndef ZV_FAMILY
#error "define ZV_FAMILY(Name, entries) before including family_list.h"
#endif
ZV_FAMILY(DotDiagram, 8)
ZV_FAMILY(Life2, 8)
// clang-format on
