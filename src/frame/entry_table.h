// Index of each export in the entry table.
#pragma once

#include "lumcv.h"

namespace lum {

using EntryFn = void (*)();

enum EntryIndex : int {
#define LUM_EXPORT(ret, name, impl, params, args) entry_##name,
#include "lumcv_exports.h"
#undef LUM_EXPORT
    entryCount
};

extern const EntryFn entryTable[entryCount];

}  // namespace lum
