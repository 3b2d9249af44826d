// Declarations of every export's implementation, from the export list.
// A family's .cpp includes this, so each definition is checked against the
// parameters that the list (and with it the public prototype) states.
#pragma once

#include "lumcv.h"

namespace lum {
#define LUM_EXPORT(ret, name, impl, params, args) ret impl params;
#include "lumcv_exports.h"
#undef LUM_EXPORT
}  // namespace lum
