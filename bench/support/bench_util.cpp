#include "support/bench_util.h"

namespace lumbench {

void pinOpenCvToOneThread() {
#ifdef LUMCV_HAVE_OPENCV
    cv::setNumThreads(1);
#endif
}

namespace {
const bool pinned = (pinOpenCvToOneThread(), true);
}

}  // namespace lumbench
