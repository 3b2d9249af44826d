/* Compiled as C99 with -pedantic-errors: the public header is plain C. */
#include "lumcore.h"
#include "lumcv.h"

int lumcvHeaderCompilesAsC(void) {
    LumiSize roi;
    LumiRect rect;
    LumiPoint32f p;
    LumDataType t = lum32f;
    LumiMaskSize m = lumMask3x3;
    LumiBorderType b = lumBorderReplicate | lumBorderInMemLeft;
    roi.width = 1;
    roi.height = 1;
    rect.x = rect.y = 0;
    rect.width = rect.height = 1;
    p.x = p.y = 0.0f;
    (void)roi;
    (void)rect;
    (void)p;
    (void)t;
    (void)m;
    (void)b;
    return lumcvGetLibVersion()->major;
}
