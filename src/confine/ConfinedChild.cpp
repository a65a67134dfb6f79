#include "confine/ConfinedChild.h"

#include "system/FileDescriptor.h"

#include <sys/mman.h>
#include <unistd.h>

#include <array>

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
    const std::optional<fs::path> program = confineProgram();
    const FileDescriptor answer(::memfd_create("layers", MFD_CLOEXEC));
    if (!program || runChild(*program, {"--layers"}, answer.get()) != 0) {
        return {};
    }
    std::array<char, 1024> text{};
    const ssize_t size = ::pread(answer.get(), text.data(), text.size(), 0);
    return {text.data(), static_cast<std::size_t>(size > 0 ? size : 0)};
}

} // namespace velmora
