#include "confine/ConfinedChild.h"

#include "system/FileDescriptor.h"

#include <sys/mman.h>
#include <unistd.h>

#include <array>
#include <system_error>

namespace velmora {

namespace fs = std::filesystem;

std::optional<fs::path> confineProgram() {
    std::error_code error;
    const fs::path folder = fs::read_symlink("/proc/self/exe", error).parent_path();
    for (const char* way : {"../libexec", "../../libexec"}) {
        const fs::path program = (folder / way / "velmora/velmora-confine").lexically_normal();
        if (!error && isExecutableFile(program)) {
            return program;
        }
    }
    return std::nullopt;
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
