// The lumcv command-line tool: commands and demo steps register themselves,
// so that each family adds its own file.
#pragma once

#include <string>
#include <vector>

#include "image_io.h"
#include "lumcv.h"

namespace tool {

using Args = std::vector<std::string>;

struct Command {
    const char* name;
    const char* usage;    // arguments after the name
    const char* summary;  // one line
    int (*run)(const Args& args);
};

bool registerCommand(const Command& c);

// What demo steps share: the output folder and two generated frames of a
// scene, in gray and in colour; the second frame has its objects moved.
struct DemoContext {
    std::string outDir;
    Image gray0, gray1;
    Image color0, color1;
    std::string path(const std::string& file) const { return outDir + "/" + file; }
};

struct DemoStep {
    int order;  // steps run in increasing order
    const char* name;
    bool (*run)(DemoContext& ctx);  // false on failure, after printing why
};

bool registerDemoStep(const DemoStep& s);

// Exit codes: 0 success, 1 usage, 2 input or output, 3 a library error.
constexpr int kExitUsage = 1;
constexpr int kExitIo = 2;
constexpr int kExitLibrary = 3;

// Prints "lumcv: <what>: <status name> (<value>)" and returns false when
// st is an error; prints a warning and returns true for a positive status.
bool checkStatus(LumStatus st, const std::string& what);
const char* statusName(LumStatus st);

// Parsing helpers for arguments; they print and return false on error.
bool parseInt(const std::string& s, int& out);
bool parseFloat(const std::string& s, float& out);

int usageError(const std::string& message);

// |a - b| per sample in the given sample type (the absdiff command).
bool absDiffImages(const Image& a, const Image& b, Sample type, Image& out);

// Writes an image into the demo folder and says so; false after printing why.
bool saveDemoImage(const DemoContext& ctx, const std::string& file, const Image& img);

}  // namespace tool
