// Image files for the tool: PNG, JPEG, BMP, TGA, PGM and PPM (8 and 16 bits)
// in; PNG, PGM and PPM (8 and 16 bits) and PFM (float) out.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace tool {

enum class Sample { U8, U16, F32 };

inline int sampleBytes(Sample s) { return s == Sample::U8 ? 1 : s == Sample::U16 ? 2 : 4; }

struct Image {
    int width = 0;
    int height = 0;
    int channels = 0;
    Sample sample = Sample::U8;
    std::vector<uint8_t> bytes;  // rows packed: step = width x channels x sample bytes

    int step() const { return width * channels * sampleBytes(sample); }
    bool empty() const { return bytes.empty(); }
    template <class T>
    T* data() { return reinterpret_cast<T*>(bytes.data()); }
    template <class T>
    const T* data() const { return reinterpret_cast<const T*>(bytes.data()); }

    static Image make(int width, int height, int channels, Sample sample);
};

// Reads a file; on failure returns false with a message in `error`.
bool readImage(const std::string& path, Image& out, std::string& error);
// Writes by the file's ending: .png (8 bit; 16-bit and float images are
// converted), .pgm/.ppm (8 or 16 bit as the image is; floats as 8 bit),
// .pfm (floats, one or three channels).
bool writeImage(const std::string& path, const Image& img, std::string& error);

// Converting copies.
Image toGray(const Image& img);             // luma of 3- or 4-channel images, by integer weights
Image toSample(const Image& img, Sample s); // 8u <-> 16u by scaling x257, to 32f unscaled
// Float image to 8 bit: linear map of [lo, hi] onto [0, 255].
Image floatTo8u(const Image& img, float lo, float hi);

}  // namespace tool
