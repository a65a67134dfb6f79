#include "cli/Sources.h"

#include "system/FileName.h"
#include "system/Names.h"
#include "system/RegularFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <system_error>

namespace velmora {

namespace {

namespace fs = std::filesystem;

constexpr std::size_t readStep = std::size_t{64} << 10;

/// Takes the names out of a list that comes piece by piece.
class NameSplitter {
public:
    explicit NameSplitter(PathListMaker& names)
        : m_names(names) {}

    void take(std::string_view piece) {
        for (std::size_t end = piece.find('\0'); end != std::string_view::npos; end = piece.find('\0')) {
            m_begun += piece.substr(0, end);
            m_names.add(m_begun);
            m_begun.clear();
            piece.remove_prefix(end + 1);
        }
        m_begun += piece;
    }

    void takeLast() {
        if (!m_begun.empty()) {
            m_names.add(m_begun);
        }
    }

private:
    PathListMaker& m_names;
    std::string m_begun;
};

void readNames(int descriptor, PathListMaker& names) {
    NameSplitter splitter(names);
    std::array<char, readStep> buffer{};
    for (;;) {
        const ssize_t got = ::read(descriptor, buffer.data(), buffer.size());
        if (got < 0 && errno != EINTR) {
            throw std::system_error(errno, std::generic_category());
        }
        if (got == 0) {
            splitter.takeLast();
            return;
        }
        if (got > 0) {
            splitter.take({buffer.data(), static_cast<std::size_t>(got)});
        }
    }
}

/// A list may be a pipe: `-0 <(find ...)`.
void readList(const fs::path& list, PathListMaker& names) {
    try {
        if (list == "-") {
            readNames(STDIN_FILENO, names);
            return;
        }
        const FileDescriptor file(::open(list.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY));
        if (!file) {
            throw std::system_error(errno, std::generic_category());
        }
        readNames(file.get(), names);
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

PathList givenPaths(const Options& options) {
    PathListMaker names;
    for (const fs::path& path : options.paths) {
        names.add(path.native());
    }
    for (const fs::path& list : options.pathLists) {
        readList(list, names);
    }
    return names.list();
}

Sources locate(const PathList& given) {
    Sources sources;
    PathListMaker found;
    for (const fs::path& path : given) {
        std::error_code error(obstacle(path), std::generic_category());
        if (!error) {
            try {
                found.add(absolutePath(path).native());
            } catch (const fs::filesystem_error& failure) {
                error = failure.code();
            }
        }
        if (error) {
            sources.problems.push_back("cannot read " + quotedName(path.native()) + ": " + error.message());
        }
    }
    sources.paths = found.list();
    return sources;
}

} // namespace velmora
