// The exported symbols. Each is a stub that jumps through its slot of the
// entry table; it has no code of its own and adds no argument. The table is
// defined in another translation unit, so the compiler cannot fold the slot
// into a direct call.
#include "frame/entry_table.h"

extern "C" {
#define LUM_EXPORT(ret, name, impl, params, args)                                   \
    LUM_API ret name params {                                                       \
        return reinterpret_cast<ret(*) params>(lum::entryTable[lum::entry_##name]) args; \
    }
#include "lumcv_exports.h"
#undef LUM_EXPORT
}
