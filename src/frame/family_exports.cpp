// The entry points of every family in the family list: each is one line into
// the shared protocol with the family's row.
#include "frame/exports.h"
#include "frame/module_state.h"
#include "frame/protocol.h"

#define ZV_FAMILY(Name, entries) ZV_DEFINE_FAMILY_ENTRIES_##entries(Name, zv::k##Name##Family)
#include "frame/family_list.h"
#undef ZV_FAMILY
