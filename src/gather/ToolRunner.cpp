#include "gather/ToolRunner.h"

#include "confine/ConfinedChild.h"
#include "system/FileDescriptor.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <string_view>
#include <system_error>

namespace velmora::Collector {

namespace {

constexpr std::size_t maxErrors = 4096;

bool holdsBytes(const FileDescriptor& file) {
    struct stat status {};

    return ::fstat(file.get(), &status) == 0 && status.st_size > 0;
}

/// Runs `tool` with its standard output going to the descriptor `output`.
ToolEnd runInto(int output, const std::filesystem::path& tool, const std::vector<std::string>& args,
                const Rules& rules, ChildLimits limits) {
    if (!isExecutableFile(tool)) {
        return {};
    }
    ToolEnd end;
    limits.hear = [&end](std::string_view text) {
        end.errors += text.substr(0, maxErrors - std::min(maxErrors, end.errors.size()));
    };
    end.status = runConfined(tool, args, output, rules, limits).value_or(ToolEnd::notStarted);
    end.succeeded = end.status == 0;
    return end;
}

} // namespace

ToolEnd run(const std::filesystem::path& tool, const std::vector<std::string>& args, const Rules& rules,
            const ChildLimits& limits) {
    return runInto(-1, tool, args, rules, limits);
}

ToolEnd runCapturing(const std::filesystem::path& tool, const std::vector<std::string>& args,
                     const std::filesystem::path& out, const Rules& rules, const ChildLimits& limits) {
    if (!isExecutableFile(tool)) {
        return {};
    }
    // A new file, never one that is there: an archive's tool may have left a link to elsewhere in its place.
    ::unlink(out.c_str());
    const FileDescriptor file(::open(out.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
    if (!file) {
        return {.status = ToolEnd::notStarted, .errors = std::generic_category().message(errno)};
    }
    ToolEnd end = runInto(file.get(), tool, args, rules, limits);
    end.succeeded = end.succeeded && holdsBytes(file);
    if (!end.succeeded) {
        ::unlink(out.c_str());
    }
    return end;
}

} // namespace velmora::Collector
