/*
 * lumcore.h - the companion core module of lumcv.
 */
#ifndef LUMCORE_H
#define LUMCORE_H

#include "lumcv.h"

#ifdef __cplusplus
extern "C" {
#endif

/* Writes the size in bytes of the largest data cache of the processor (the
 * last level), as the operating system reports it; where it reports nothing,
 * the processor's own cache descriptors, and failing those 8 MiB.
 * lumStatusNullPointer for a null pointer, lumStatusOk otherwise. */
LUM_API LumStatus lumGetMaxCacheSizeB(int* pSizeByte);

#ifdef __cplusplus
}
#endif

#endif /* LUMCORE_H */
