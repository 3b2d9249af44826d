// lumcv: the library's command-line tool.
#include <cerrno>
#include <cstdio>
#include <cstdint>
#include <cstdlib>
#include <map>
#include <string>

#include "tool.h"

namespace tool {

namespace {
std::map<std::string, Command>& commands() {
    static std::map<std::string, Command> c;
    return c;
}
}  // namespace

bool registerCommand(const Command& c) {
    commands()[c.name] = c;
    return true;
}

int usageError(const std::string& message) {
    std::fprintf(stderr, "lumcv: %s\n", message.c_str());
    return kExitUsage;
}

bool parseInt(const std::string& s, int& out) {
    char* end = nullptr;
    errno = 0;
    const long v = std::strtol(s.c_str(), &end, 0);
    if (s.empty() || *end != '\0' || errno != 0 || v < INT32_MIN || v > INT32_MAX) {
        std::fprintf(stderr, "lumcv: '%s' is not an integer\n", s.c_str());
        return false;
    }
    out = static_cast<int>(v);
    return true;
}

bool parseFloat(const std::string& s, float& out) {
    char* end = nullptr;
    errno = 0;
    const float v = std::strtof(s.c_str(), &end);
    if (s.empty() || *end != '\0' || errno != 0) {
        std::fprintf(stderr, "lumcv: '%s' is not a number\n", s.c_str());
        return false;
    }
    out = v;
    return true;
}

void printUsage(FILE* to) {
    std::fprintf(to, "usage: lumcv <command> [arguments]\n\ncommands:\n");
    for (const auto& [name, c] : commands()) std::fprintf(to, "  %-10s %s\n             %s\n", name.c_str(), c.usage, c.summary);
}

}  // namespace tool

int main(int argc, char** argv) {
    using namespace tool;
    if (argc < 2) {
        printUsage(stderr);
        return kExitUsage;
    }
    const std::string name = argv[1];
    if (name == "help" || name == "--help" || name == "-h") {
        printUsage(stdout);
        return 0;
    }
    auto it = commands().find(name);
    if (it == commands().end()) {
        std::fprintf(stderr, "lumcv: unknown command '%s'\n", name.c_str());
        printUsage(stderr);
        return kExitUsage;
    }
    Args args(argv + 2, argv + argc);
    return it->second.run(args);
}
