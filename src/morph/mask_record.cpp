#include "morph/mask_record.h"

#include "frame/check.h"

namespace lum::morph {
namespace {

void writeField(uint8_t* record, int index, int32_t v) { std::memcpy(record + 4 * index, &v, 4); }

// The three stored patterns, row by row, 1 selected.
constexpr uint8_t kPlus3[9] = {0, 1, 0, 1, 1, 1, 0, 1, 0};
constexpr uint8_t kDiamond5[25] = {0, 0, 1, 0, 0, 0, 1, 1, 1, 0, 1, 1, 1, 1, 1, 0, 1, 1, 1, 0, 0, 0, 1, 0, 0};
constexpr uint8_t kRound7[49] = {0, 0, 0, 1, 0, 0, 0, 0, 1, 1, 1, 1, 1, 0, 0, 1, 1, 1, 1, 1, 0, 1, 1, 1, 1,
                                 1, 1, 1, 0, 1, 1, 1, 1, 1, 0, 0, 1, 1, 1, 1, 1, 0, 0, 0, 0, 1, 0, 0, 0};

bool matches(const uint8_t* m, int W, int H, const uint8_t* pattern, int n) {
    if (W != n || H != n) return false;
    for (int i = 0; i < n * n; ++i)
        if ((m[i] != 0) != (pattern[i] != 0)) return false;
    return true;
}

}  // namespace

int maskRecordSize(LumiSize maskSize) {
    const int W = storedDim(maskSize.width), H = storedDim(maskSize.height);
    return addWrap(addWrap(mulWrap(addWrap(mulWrap(2, W), 2), H), mulWrap(H, addWrap(mulWrap(3, W), 2))), 96);
}

void buildMaskRecord(uint8_t* record, const Lum8u* mask, LumiSize maskSize) {
    const int mw = maskSize.width, mh = maskSize.height;
    const int W = storedDim(mw), H = storedDim(mh);
    const int padX = W - mw, padY = H - mh;  // zero column at the left, zero row at the top

    uint8_t* m = alignUp(record + kRecordHeaderBytes, 16);
    uint16_t* lists = alignUp<uint16_t>(m + W * H, 4);
    uint16_t* runs = alignUp<uint16_t>(lists + H * (W + 1), 4);

    std::memset(m, 0, static_cast<size_t>(W) * H);
    for (int y = 0; y < mh; ++y)
        for (int x = 0; x < mw; ++x)
            m[(y + padY) * W + x + padX] = mask[y * mw + x] != 0 ? 255 : 0;

    int selected = 0, fullRows = 0, fullCols = 0, crossRow = -1, crossCol = -1;
    bool singleRuns = true, colsAtMostOne = true;
    for (int y = 0; y < H; ++y) {
        uint16_t* entry = lists + y * (W + 1);
        int count = 0, first = 0, pieces = 0;
        for (int x = 0; x < W; ++x) {
            if (m[y * W + x] == 0) continue;
            if (count == 0) first = x;
            if (x == 0 || m[y * W + x - 1] == 0) ++pieces;
            entry[1 + count++] = static_cast<uint16_t>(x);
        }
        entry[0] = static_cast<uint16_t>(count);
        runs[2 * y] = static_cast<uint16_t>(count);
        runs[2 * y + 1] = static_cast<uint16_t>(first);
        if (pieces > 1) singleRuns = false;
        if (count == W) {
            ++fullRows;
            crossRow = y;
        }
        selected += count;
    }
    for (int x = 0; x < W; ++x) {
        int count = 0;
        for (int y = 0; y < H; ++y) count += m[y * W + x] != 0;
        if (count == H) {
            ++fullCols;
            crossCol = x;
        } else if (count > 1) {
            colsAtMostOne = false;
        }
    }

    bool outerZero = lists[0] == 0 || lists[(H - 1) * (W + 1)] == 0;
    {
        bool firstCol = true, lastCol = true;
        for (int y = 0; y < H; ++y) {
            firstCol = firstCol && m[y * W] == 0;
            lastCol = lastCol && m[y * W + W - 1] == 0;
        }
        outerZero = outerZero || firstCol || lastCol;
    }

    // A cross: one full row, one full column, every other column holding at
    // most its element of the full row.
    const bool cross = W >= 2 && H >= 2 && fullRows == 1 && fullCols == 1 && colsAtMostOne;
    if (cross) {
        runs[0] = static_cast<uint16_t>(crossRow);
        runs[1] = static_cast<uint16_t>(crossCol);
    }

    int classification = 0;
    if (selected == W * H) classification |= kFullRect;
    if (selected == 0) classification |= kEmpty;
    if (outerZero) classification |= kOuterLineZero;
    if (singleRuns) classification |= kSingleRuns;
    if (cross) classification |= kCross;
    int shape = 0;
    if (matches(m, W, H, kPlus3, 3)) shape = kShapePlus3;
    else if (matches(m, W, H, kDiamond5, 5)) shape = kShapeDiamond5;
    else if (matches(m, W, H, kRound7, 7)) shape = kShapeRound7;
    classification |= shape;

    writeField(record, 0, offsetIn(record, m));
    writeField(record, 1, W);
    writeField(record, 2, H);
    writeField(record, 3, mw / 2);
    writeField(record, 4, mh / 2);
    writeField(record, 5, W);
    writeField(record, 6, H);
    writeField(record, 7, offsetIn(record, lists));
    writeField(record, 8, singleRuns ? 1 : 0);
    writeField(record, 9, offsetIn(record, runs));
    writeField(record, 10, classification);
    writeField(record, 11, cross ? 1 : 0);
    writeField(record, 12, shape != 0 ? 1 : 0);
}

}  // namespace lum::morph
