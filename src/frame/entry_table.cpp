// The entry table: one slot an export, in byte order of the export names.
// The table is constant; the loader fills in the addresses once.
#include "frame/entry_table.h"

#include "frame/impl.h"

namespace lum {

const EntryFn entryTable[entryCount] = {
#define LUM_EXPORT(ret, name, impl, params, args) reinterpret_cast<EntryFn>(&impl),
#include "lumcv_exports.h"
#undef LUM_EXPORT
};

}  // namespace lum
