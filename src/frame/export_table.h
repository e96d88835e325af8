// The module's exports: every name the Host finds in the library, with its
// ordinal where the Host knows one. The build turns the ZV_EXPORT lines into
// the linker's version script, and a test compares the library's dynamic
// symbol table with them, so a name here and the library cannot disagree.
//
// Each line is ZV_EXPORT(name, ordinal); the family entry points have no
// fixed ordinal (0).
// clang-format off
#ifndef ZV_EXPORT
#error "define ZV_EXPORT(name, ordinal) before including export_table.h"
#endif
ZV_EXPORT(FilterDllMsg, 2)
ZV_EXPORT(ProcessDllIdle, 3)
ZV_EXPORT(IsKeel4Loaded, 4)
ZV_EXPORT(CallKeel4Interpret, 5)
ZV_EXPORT(Keel4SetAddedText, 92)
ZV_EXPORT(DotDiagramDialog, 0)
ZV_EXPORT(DotDiagramSetup, 0)
ZV_EXPORT(DotDiagramBegin, 0)
ZV_EXPORT(DotDiagramBeginAgain, 0)
ZV_EXPORT(DotDiagramItem, 0)
ZV_EXPORT(DotDiagramOpts, 0)
ZV_EXPORT(DotDiagramVsave, 0)
ZV_EXPORT(DotDiagramRedoItem1, 0)
ZV_EXPORT(Life2Dialog, 0)
ZV_EXPORT(Life2Setup, 0)
ZV_EXPORT(Life2Begin, 0)
ZV_EXPORT(Life2BeginAgain, 0)
ZV_EXPORT(Life2Item, 0)
ZV_EXPORT(Life2Opts, 0)
ZV_EXPORT(Life2Vsave, 0)
ZV_EXPORT(Life2RedoItem1, 0)
// clang-format on
