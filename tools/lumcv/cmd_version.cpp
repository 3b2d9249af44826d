#include <cstdio>

#include "lumcore.h"
#include "tool.h"

namespace tool {
namespace {

int runVersion(const Args& args) {
    if (!args.empty()) return usageError("version takes no arguments");
    const LumLibraryVersion* v = lumcvGetLibVersion();
    int cache = 0;
    lumGetMaxCacheSizeB(&cache);
    std::printf("%s %s\n", v->name, v->version);
    std::printf("  version  %d.%d.%d, build 0x%08x, target %s\n", v->major, v->minor, v->majorBuild,
                static_cast<unsigned>(v->build), v->targetCpu);
    std::printf("  built    %s\n", v->buildDate);
    std::printf("  cache    %d bytes (largest data cache, from lumcore)\n", cache);
    return 0;
}

const bool registered = registerCommand({"version", "", "print the library's version record", runVersion});

}  // namespace
}  // namespace tool
