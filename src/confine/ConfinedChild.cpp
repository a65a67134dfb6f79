#include "confine/ConfinedChild.h"

#include <unistd.h>

namespace velmora {

namespace fs = std::filesystem;

std::optional<fs::path> confineProgram() {
    return privateProgram("velmora-confine");
}

std::optional<int> runConfined(const fs::path& tool, const std::vector<std::string>& args, int output,
                               const Rules& rules, const ChildLimits& limits) {
    const std::optional<fs::path> program = confineProgram();
    if (!program || !isExecutableFile(tool)) {
        return std::nullopt;
    }
    ConfinedCommand command{.parent = ::getpid(), .rules = rules, .tool = {tool.native()}};
    command.tool.insert(command.tool.end(), args.begin(), args.end());
    return runChild(*program, argumentsFor(command), output, limits);
}

std::string wallReport() {
    return privateAnswer("velmora-confine", {"--layers"});
}

} // namespace velmora
