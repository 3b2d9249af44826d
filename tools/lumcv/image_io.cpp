#include "image_io.h"

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstring>

#include <stb/stb_image.h>
#include <stb/stb_image_write.h>

namespace tool {

namespace {

std::string lowerExtension(const std::string& path) {
    const size_t dot = path.find_last_of('.');
    if (dot == std::string::npos) return "";
    std::string e = path.substr(dot + 1);
    for (char& c : e) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return e;
}

bool writePnm(const std::string& path, const Image& img, std::string& error) {
    Image src = img.sample == Sample::F32 ? floatTo8u(img, 0.0f, 255.0f) : img;
    if (src.channels == 4) {
        // PNM has no alpha: keep the colour channels.
        Image rgb = Image::make(src.width, src.height, 3, src.sample);
        const int s = sampleBytes(src.sample);
        for (size_t p = 0; p < static_cast<size_t>(src.width) * src.height; ++p)
            std::memcpy(&rgb.bytes[p * 3 * s], &src.bytes[p * 4 * s], 3 * s);
        src = rgb;
    }
    if (src.channels != 1 && src.channels != 3) {
        error = "PGM/PPM take one or three channels";
        return false;
    }
    FILE* f = std::fopen(path.c_str(), "wb");
    if (!f) {
        error = std::strerror(errno);
        return false;
    }
    const int maxval = src.sample == Sample::U16 ? 65535 : 255;
    std::fprintf(f, "P%c\n%d %d\n%d\n", src.channels == 1 ? '5' : '6', src.width, src.height, maxval);
    bool ok = true;
    if (src.sample == Sample::U16) {
        // PNM stores 16-bit samples big-endian.
        std::vector<uint8_t> be(src.bytes.size());
        for (size_t i = 0; i + 1 < be.size(); i += 2) {
            be[i] = src.bytes[i + 1];
            be[i + 1] = src.bytes[i];
        }
        ok = std::fwrite(be.data(), 1, be.size(), f) == be.size();
    } else {
        ok = std::fwrite(src.bytes.data(), 1, src.bytes.size(), f) == src.bytes.size();
    }
    ok = (std::fclose(f) == 0) && ok;
    if (!ok) error = "write failed";
    return ok;
}

bool writePfm(const std::string& path, const Image& img, std::string& error) {
    const Image src = img.sample == Sample::F32 ? img : toSample(img, Sample::F32);
    if (src.channels != 1 && src.channels != 3) {
        error = "PFM takes one or three channels";
        return false;
    }
    FILE* f = std::fopen(path.c_str(), "wb");
    if (!f) {
        error = std::strerror(errno);
        return false;
    }
    // Little-endian (negative scale), rows bottom to top.
    std::fprintf(f, "P%c\n%d %d\n-1.0\n", src.channels == 1 ? 'f' : 'F', src.width, src.height);
    const size_t row = static_cast<size_t>(src.step());
    bool ok = true;
    for (int y = src.height - 1; y >= 0 && ok; --y) ok = std::fwrite(&src.bytes[row * y], 1, row, f) == row;
    ok = (std::fclose(f) == 0) && ok;
    if (!ok) error = "write failed";
    return ok;
}

}  // namespace

Image Image::make(int width, int height, int channels, Sample sample) {
    Image img;
    img.width = width;
    img.height = height;
    img.channels = channels;
    img.sample = sample;
    img.bytes.assign(static_cast<size_t>(width) * height * channels * sampleBytes(sample), 0);
    return img;
}

bool readImage(const std::string& path, Image& out, std::string& error) {
    FILE* f = std::fopen(path.c_str(), "rb");
    if (!f) {
        error = std::string("cannot open: ") + std::strerror(errno);
        return false;
    }
    int w = 0, h = 0, c = 0;
    const bool sixteen = stbi_is_16_bit_from_file(f) != 0;
    std::fseek(f, 0, SEEK_SET);
    void* pixels = sixteen ? static_cast<void*>(stbi_load_from_file_16(f, &w, &h, &c, 0))
                           : static_cast<void*>(stbi_load_from_file(f, &w, &h, &c, 0));
    std::fclose(f);
    if (pixels == nullptr) {
        error = std::string("not a readable image (") + stbi_failure_reason() + ")";
        return false;
    }
    if (c == 2) {
        // Gray with alpha: keep the gray channel.
        Image g = Image::make(w, h, 1, sixteen ? Sample::U16 : Sample::U8);
        const int s = sixteen ? 2 : 1;
        for (size_t p = 0; p < static_cast<size_t>(w) * h; ++p)
            std::memcpy(&g.bytes[p * s], static_cast<uint8_t*>(pixels) + p * 2 * s, s);
        out = std::move(g);
    } else {
        out = Image::make(w, h, c, sixteen ? Sample::U16 : Sample::U8);
        std::memcpy(out.bytes.data(), pixels, out.bytes.size());
    }
    stbi_image_free(pixels);
    return true;
}

bool writeImage(const std::string& path, const Image& img, std::string& error) {
    const std::string ext = lowerExtension(path);
    if (ext == "pgm" || ext == "ppm" || ext == "pnm") return writePnm(path, img, error);
    if (ext == "pfm") return writePfm(path, img, error);
    if (ext == "png") {
        Image src = img;
        if (img.sample == Sample::U16) {
            src = Image::make(img.width, img.height, img.channels, Sample::U8);
            const uint16_t* s = img.data<uint16_t>();
            for (size_t i = 0; i < src.bytes.size(); ++i) src.bytes[i] = static_cast<uint8_t>((s[i] + 128) / 257);
        } else if (img.sample == Sample::F32) {
            src = floatTo8u(img, 0.0f, 255.0f);
        }
        if (!stbi_write_png(path.c_str(), src.width, src.height, src.channels, src.bytes.data(), src.step())) {
            error = "PNG write failed";
            return false;
        }
        return true;
    }
    error = "unknown image format '." + ext + "' (use .png, .pgm, .ppm or .pfm)";
    return false;
}

Image toGray(const Image& img) {
    if (img.channels == 1) return img;
    Image g = Image::make(img.width, img.height, 1, img.sample);
    const size_t n = static_cast<size_t>(img.width) * img.height;
    for (size_t p = 0; p < n; ++p) {
        double v[3];
        for (int c = 0; c < 3; ++c) {
            const size_t i = p * img.channels + c;
            v[c] = img.sample == Sample::U8    ? img.bytes[i]
                   : img.sample == Sample::U16 ? img.data<uint16_t>()[i]
                                               : img.data<float>()[i];
        }
        const double y = (77 * v[0] + 150 * v[1] + 29 * v[2]) / 256.0;
        if (img.sample == Sample::U8) g.bytes[p] = static_cast<uint8_t>(std::lround(std::min(255.0, y)));
        else if (img.sample == Sample::U16) g.data<uint16_t>()[p] = static_cast<uint16_t>(std::lround(std::min(65535.0, y)));
        else g.data<float>()[p] = static_cast<float>(y);
    }
    return g;
}

Image toSample(const Image& img, Sample s) {
    if (img.sample == s) return img;
    Image out = Image::make(img.width, img.height, img.channels, s);
    const size_t n = static_cast<size_t>(img.width) * img.height * img.channels;
    for (size_t i = 0; i < n; ++i) {
        double v = img.sample == Sample::U8    ? img.bytes[i]
                   : img.sample == Sample::U16 ? img.data<uint16_t>()[i]
                                               : img.data<float>()[i];
        if (s == Sample::F32) {
            out.data<float>()[i] = static_cast<float>(v);
        } else if (s == Sample::U16) {
            if (img.sample == Sample::U8) v *= 257.0;
            out.data<uint16_t>()[i] = static_cast<uint16_t>(std::lround(std::clamp(v, 0.0, 65535.0)));
        } else {
            if (img.sample == Sample::U16) v /= 257.0;
            out.bytes[i] = static_cast<uint8_t>(std::lround(std::clamp(v, 0.0, 255.0)));
        }
    }
    return out;
}

Image floatTo8u(const Image& img, float lo, float hi) {
    Image out = Image::make(img.width, img.height, img.channels, Sample::U8);
    const size_t n = out.bytes.size();
    const float scale = hi > lo ? 255.0f / (hi - lo) : 0.0f;
    for (size_t i = 0; i < n; ++i) {
        const float v = (img.data<float>()[i] - lo) * scale;
        out.bytes[i] = static_cast<uint8_t>(std::isnan(v) ? 0 : std::lround(std::clamp(v, 0.0f, 255.0f)));
    }
    return out;
}

}  // namespace tool
