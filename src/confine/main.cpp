// velmora-confine: puts up the wall around itself, then becomes the tool. Private to the programs, which
// start every tool through it; see Rules.h for its arguments.
//
//   velmora-confine --layers    says in a line each which layers this system offers

#include "confine/CallFilter.h"
#include "confine/FileAccess.h"
#include "confine/Limits.h"
#include "confine/OwnProcesses.h"
#include "confine/ReadOnlyMounts.h"
#include "confine/Rules.h"

#include <sys/prctl.h>
#include <unistd.h>

#include <cstdio>
#include <exception>
#include <string>
#include <vector>

namespace velmora {

namespace {

constexpr int notStarted = 126; // as the shell says it

const char* wordFor(Layer layer) {
    return layer == Layer::stands ? "stands" : "not offered here";
}

/// The layers need not be put up in vain: the program ends right afterwards.
void printLayers() {
    ::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0);
    const Rules rules;
    const int version = fileAccessVersion();
    std::printf("read-only mounts: %s\n", wordFor(mountReadOnly({})));
    std::printf("own processes: %s\n", wordFor(enterOwnProcesses()));
    std::printf("Landlock: %s (version %d)\n", wordFor(restrictFiles(rules, "/")), version);
    std::printf("seccomp: %s\n", wordFor(filterCalls()));
    std::printf("limits: stand\n");
}

void putUpWall(const ConfinedCommand& command) {
    mountReadOnly(command.rules.writable);
    dieWith(command.parent);
    enterOwnProcesses();
    if (::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) != 0) {
        throw WallError("cannot give up new privileges");
    }
    restrictFiles(command.rules, command.tool.front());
    limitResources(command.rules);
    filterCalls();
}

void becomeTool(std::vector<std::string>& tool) {
    std::vector<char*> words;
    words.reserve(tool.size() + 1);
    for (std::string& word : tool) {
        words.push_back(word.data());
    }
    words.push_back(nullptr);
    ::execv(words.front(), words.data());
}

} // namespace

} // namespace velmora

int main(int argc, char** argv) {
    const std::vector<std::string> arguments(argv + 1, argv + argc);
    try {
        if (arguments == std::vector<std::string>{"--layers"}) {
            velmora::printLayers();
            return 0;
        }
        if (std::optional<velmora::ConfinedCommand> command = velmora::commandFrom(arguments)) {
            velmora::putUpWall(*command);
            velmora::becomeTool(command->tool);
        }
    } catch (const std::exception& error) {
        std::fprintf(stderr, "velmora-confine: %s\n", error.what());
    }
    ::_exit(velmora::notStarted);
}
