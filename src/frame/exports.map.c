/* Source of the linker's version script: run through the C preprocessor, it
 * lists every export as global and hides everything else. */
#define LUM_EXPORT(ret, name, impl, params, args) name;
{
  global:
#include "lumcv_exports.h"
  local: *;
};
