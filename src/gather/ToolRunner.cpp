#include "gather/ToolRunner.h"

#include "confine/ConfinedChild.h"
#include "system/RegularFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace velmora::Collector {

namespace {

bool holdsBytes(const FileDescriptor& file) {
    struct stat status {};

    return ::fstat(file.get(), &status) == 0 && status.st_size > 0;
}

} // namespace

bool run(const std::filesystem::path& tool, const std::vector<std::string>& args, const Rules& rules,
         const std::stop_token& stop) {
    return runConfined(tool, args, -1, rules, {.stop = stop, .deadline = {}}) == 0;
}

bool runCapturing(const std::filesystem::path& tool, const std::vector<std::string>& args,
                  const std::filesystem::path& out, const Rules& rules, const std::stop_token& stop) {
    if (!isExecutableFile(tool)) {
        return false;
    }
    // A new file, never one that is there: an archive's tool may have left a link to elsewhere in its place.
    ::unlink(out.c_str());
    const FileDescriptor file(::open(out.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
    if (!file) {
        return false;
    }
    if (runConfined(tool, args, file.get(), rules, {.stop = stop, .deadline = {}}) == 0 && holdsBytes(file)) {
        return true;
    }
    ::unlink(out.c_str());
    return false;
}

} // namespace velmora::Collector
