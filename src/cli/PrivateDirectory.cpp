#include "cli/PrivateDirectory.h"

#include "cli/DeadRuns.h"
#include "cli/Names.h"
#include "cli/RunLock.h"
#include "system/RemoveTree.h"

#include <cerrno>
#include <cstdlib>
#include <system_error>
#include <utility>

namespace velmora {

namespace {

namespace fs = std::filesystem;

/// A starting run may take a new directory for a dead run's before it is locked. Then another is made; more
/// often than this it is not bad luck.
constexpr int mostAttempts = 100;

fs::path temporaryDirectory() {
    std::error_code error;
    const fs::path directory = fs::temp_directory_path(error);
    if (error) {
        throw std::system_error(error, "cannot use the temporary directory");
    }
    return fs::absolute(directory);
}

} // namespace

PrivateDirectory::PrivateDirectory() {
    const fs::path parent = temporaryDirectory();
    removeDeadRuns(parent);
    for (int attempt = 0; attempt < mostAttempts && !m_lock; ++attempt) {
        std::string path = parent / (std::string(runPrefix) + "XXXXXX");
        if (::mkdtemp(path.data()) == nullptr) {
            break;
        }
        m_lock = lockRun(path);
        m_path = std::move(path);
    }
    if (!m_lock) {
        throw std::system_error(errno, std::generic_category(),
                                "cannot make a directory in " + quotedName(parent.native()));
    }
    if (const char* outer = std::getenv("TMPDIR")) {
        m_outerTmpdir = outer;
    }
    ::setenv("TMPDIR", m_path.c_str(), 1);
}

PrivateDirectory::~PrivateDirectory() {
    if (m_outerTmpdir) {
        ::setenv("TMPDIR", m_outerTmpdir->c_str(), 1);
    } else {
        ::unsetenv("TMPDIR");
    }
    removeTree(m_path);
}

} // namespace velmora
