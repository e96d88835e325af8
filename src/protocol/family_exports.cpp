// The entry points of every family in the family list: each is one line into
// the shared protocol with the family's row.
#include "frame/module_state.h"
#include "protocol/exports.h"
#include "protocol/protocol.h"

#define ZV_FAMILY(Name, entries) ZV_DEFINE_FAMILY_ENTRIES_##entries(Name, zv::k##Name##Family)
#include "protocol/family_list.h"
#undef ZV_FAMILY
