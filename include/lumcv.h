/*
 * lumcv.h - public interface of liblumcvk4, the AVX2 (k4) member of the lumcv
 * image-processing library.
 *
 * Every function works on buffers owned by the caller: an image is a pointer to
 * the first sample of its region of interest (ROI), a row step in bytes and a
 * LumiSize that holds the ROI's width and height in pixels. Functions never
 * allocate, start no thread, keep no state between calls outside blocks the
 * caller owns, and report through a LumStatus: zero for success, negative for
 * an error that leaves every output untouched, positive for a warning with
 * which the operation completed.
 *
 * Arguments are checked in one fixed order, and the first failing check
 * decides the status:
 *   1. required pointers               lumStatusNullPointer
 *   2. ROI width or height below 1     lumStatusBadSize
 *   3. each step against its row bytes lumStatusBadStep
 *   4. steps of samples of 2 bytes and more against the sample size
 *                                      lumStatusStepNotAligned
 *   5. spec identifier word, where a family has one
 *   6. the family's own parameters, in argument order; in-place refusal last
 *   7. the kernel.
 * A step is always in bytes; a negative step (bottom-up image) is refused with
 * lumStatusBadStep.
 *
 * Floats convert to integers by rounding to nearest with ties to even, and
 * narrowing integer results saturate, unless a family states otherwise.
 *
 * The header is valid C99 and C++.
 */
#ifndef LUMCV_H
#define LUMCV_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* ---------------------------------------------------------------- samples */
typedef uint8_t  Lum8u;
typedef int8_t   Lum8s;
typedef uint16_t Lum16u;
typedef int16_t  Lum16s;
typedef uint32_t Lum32u;
typedef int32_t  Lum32s;
typedef int64_t  Lum64s;
typedef float    Lum32f;
typedef double   Lum64f;

/* ------------------------------------------------------------ geometry */
typedef struct LumiSize    { int width; int height; } LumiSize;
typedef struct LumiPoint   { int x; int y; } LumiPoint;
typedef struct LumiRect    { int x; int y; int width; int height; } LumiRect;
typedef struct LumiPoint32f { Lum32f x; Lum32f y; } LumiPoint32f;

/* Size type of the _L members: 32 bits wide in this module. */
typedef int32_t LumSizeL;

/* ------------------------------------------------------------- statuses */
typedef int LumStatus;

enum {
    /* warnings: the operation completed */
    lumStatusOk                  = 0,
    lumStatusEmptyMask           = 1,   /* the mask selected no pixel */
    lumStatusZeroDenominator     = 2,   /* relative norm with a zero denominator */
    lumStatusSizeWarning         = 12,  /* a size written may not fit 32 bits */
    lumStatusTooManyLines        = 33,  /* more segments found than allowed */
    lumStatusKernelNotSymmetric  = 38,  /* left half of the kernel served for both */
    lumStatusRoiOutside          = 48,  /* the ROI reaches outside the image */
    /* errors: nothing was written */
    lumStatusCountOverflow       = -2,
    lumStatusBadArgument         = -5,
    lumStatusBadSize             = -6,
    lumStatusBadRange            = -7,
    lumStatusNullPointer         = -8,
    lumStatusDivideByZero        = -10,
    lumStatusOutOfRange          = -11,
    lumStatusContextMismatch     = -13,
    lumStatusBadMode             = -14,
    lumStatusBadStep             = -16,
    lumStatusBadThreshold        = -19,
    lumStatusBadMaskSize         = -33,
    lumStatusBadAnchor           = -34,
    lumStatusBadChannelCount     = -47,
    lumStatusZeroDivisor         = -51,
    lumStatusBadChannelOfInterest = -52,
    lumStatusBadChannelNumber    = -53,
    lumStatusBadMetric           = -56,
    lumStatusBadDataType         = -59,
    lumStatusStepNotAligned      = -108,
    lumStatusBadBorderType       = -225,
    lumStatusBadNormType         = -229,
    lumStatusBadFilterType       = -230,
    lumStatusSizeOverflow        = -232,
    lumStatusInPlaceNotSupported = -9998
};

/* ------------------------------------------------------------- borders */
/*
 * A border word holds three fields:
 *   bits 0..3   border type (what lies outside the ROI)
 *   bits 4..7   sides whose real pixels lie in memory next to the ROI
 *   bits 8..11  the same sides for the second stage of a compound operation
 * A memory flag wins over the type on its side; 240 (all four flags) reads
 * every side from memory.
 */
typedef int LumiBorderType;

enum {
    lumBorderReplicate = 1,    /* repeat the nearest edge pixel */
    lumBorderWrap      = 2,    /* known to row extension only; refused by every export */
    lumBorderMirror    = 3,    /* reflect about the edge pixel, which is not repeated */
    lumBorderNeutral   = 5,    /* morphology only: a value that cannot change the result */
    lumBorderConstant  = 6,    /* a value passed with the call */

    lumBorderInMemTop    = 16,
    lumBorderInMemBottom = 32,
    lumBorderInMemLeft   = 64,
    lumBorderInMemRight  = 128,
    lumBorderInMemory    = 240,

    lumBorderFirstStageInMemTop    = 256,
    lumBorderFirstStageInMemBottom = 512,
    lumBorderFirstStageInMemLeft   = 1024,
    lumBorderFirstStageInMemRight  = 2048
};

/* ----------------------------------------------------------- data types */
/* Sample type code of the type-free size queries and Init functions. */
typedef enum LumDataType {
    lum1u  = 0,   /* packed bits */
    lum8u  = 1,
    lum16u = 5,
    lum16s = 7,
    lum32s = 11,
    lum32f = 13,
    lum64f = 19
} LumDataType;

/* Fixed mask sizes: width digit, then height digit. */
typedef enum LumiMaskSize {
    lumMask3x3 = 33,
    lumMask5x5 = 55
} LumiMaskSize;

/* ------------------------------------------------------------- version */
typedef struct LumLibraryVersion {
    int         major;        /* 2021 */
    int         minor;        /* 12 */
    int         majorBuild;   /* 0 */
    int         build;        /* revision number, bit pattern 0x9b172c15 */
    char        targetCpu[4]; /* "k4" and two zero bytes */
    const char* name;
    const char* version;
    const char* buildDate;
} LumLibraryVersion;

/* ------------------------------------------------------------- exports */
#if defined(_WIN32)
#  define LUM_API
#else
#  define LUM_API __attribute__((visibility("default")))
#endif

/* Every export, in byte order of its name, with its prototype. The list is an
 * X-macro: LUM_EXPORT(return type, name, implementation, (parameters),
 * (arguments)); the library and its tests include it again with other
 * definitions of LUM_EXPORT. */
#define LUM_EXPORT(ret, name, impl, params, args) LUM_API ret name params;
#include "lumcv_exports.h"
#undef LUM_EXPORT

#ifdef __cplusplus
}
#endif

#endif /* LUMCV_H */
