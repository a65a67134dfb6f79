#include "cli/Sources.h"

#include "cli/Names.h"
#include "system/FileName.h"
#include "system/Paths.h"
#include "system/RegularFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <iterator>
#include <system_error>
#include <utility>

namespace velmora {

namespace {

namespace fs = std::filesystem;

constexpr std::size_t readStep = std::size_t{64} << 10;

std::string readAll(int descriptor) {
    std::string text;
    std::array<char, readStep> buffer{};
    for (;;) {
        const ssize_t got = ::read(descriptor, buffer.data(), buffer.size());
        if (got < 0 && errno != EINTR) {
            throw std::system_error(errno, std::generic_category());
        }
        if (got == 0) {
            return text;
        }
        if (got > 0) {
            text.append(buffer.data(), static_cast<std::size_t>(got));
        }
    }
}

/// A list may be a pipe: `-0 <(find ...)`.
std::string readList(const fs::path& list) {
    try {
        if (list == "-") {
            return readAll(STDIN_FILENO);
        }
        const FileDescriptor file(::open(list.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY));
        if (!file) {
            throw std::system_error(errno, std::generic_category());
        }
        return readAll(file.get());
    } catch (const std::system_error& error) {
        throw std::system_error(error.code(), "cannot read the list " + quotedName(list.native()));
    }
}

/// 0, or the errno that says why nothing at `path` can be scanned.
int obstacle(const fs::path& path) {
    struct stat status {};

    if (::stat(path.c_str(), &status) != 0) {
        return errno;
    }
    const bool shut =
        S_ISDIR(status.st_mode) && ::faccessat(AT_FDCWD, path.c_str(), R_OK | X_OK, AT_EACCESS) != 0;
    return shut ? errno : 0;
}

} // namespace

Paths givenPaths(const Options& options) {
    Paths paths = options.paths;
    for (const fs::path& list : options.pathLists) {
        std::ranges::move(splitAtNul(readList(list)), std::back_inserter(paths));
    }
    return paths;
}

Paths splitAtNul(std::string_view text) {
    Paths names;
    while (!text.empty()) {
        const std::size_t end = text.find('\0');
        names.emplace_back(text.substr(0, end));
        text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    }
    return names;
}

Sources locate(Paths given) {
    Sources sources;
    for (fs::path& next : given) {
        const fs::path path = std::move(next); // they may be many, and are held once
        std::error_code error(obstacle(path), std::generic_category());
        if (!error) {
            try {
                sources.paths.push_back(absolutePath(path));
            } catch (const fs::filesystem_error& failure) {
                error = failure.code();
            }
        }
        if (error) {
            sources.problems.push_back("cannot read " + quotedName(path.native()) + ": " + error.message());
        }
    }
    return sources;
}

fs::path absolutePath(const fs::path& path) {
    fs::path asGiven = fs::absolute(path);
    fs::path resolved = standardized(asGiven);
    std::error_code ignored;
    const bool samePlace = !fs::exists(asGiven, ignored) || fs::equivalent(asGiven, resolved, ignored);
    return samePlace ? resolved : asGiven;
}

} // namespace velmora
