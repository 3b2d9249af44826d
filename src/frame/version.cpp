#include "frame/impl.h"

namespace lum {

namespace {
// 0x9b172c15 does not fit a positive int; the record holds its bit pattern.
constexpr int kRevision = static_cast<int>(0x9b172c15u);

const LumLibraryVersion kVersion = {
    2021, 12, 0, kRevision, {'k', '4', 0, 0},
    "lumCV AVX2 (k4)", "2021.12.0 (r0x9b172c15)", "Apr 25 2024",
};
}  // namespace

const LumLibraryVersion* getLibVersion() { return &kVersion; }

}  // namespace lum
