#include "cli/PrivateDirectory.h"

#include "cli/DeadRuns.h"
#include "cli/Names.h"
#include "cli/RunLock.h"

#include <cerrno>
#include <cstdlib>
#include <system_error>
#include <utility>

namespace velmora {

namespace {

namespace fs = std::filesystem;

/// A run that starts at the same time may take a new directory for a dead run's before it is locked. Then
/// another one is made, at most this often.
constexpr int maxAttempts = 100;

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
    int error = 0;
    for (int attempt = 0; attempt < maxAttempts && !m_lock; ++attempt) {
        m_directory = TemporaryDirectory::makeUnique(parent / runPrefix);
        if (!m_directory) {
            error = errno;
            break;
        }
        m_lock = lockRun(path());
        error = errno;
    }
    if (!m_lock) {
        throw std::system_error(error, std::generic_category(),
                                "cannot make a directory in " + quotedName(parent.native()));
    }
    if (const char* outer = std::getenv("TMPDIR")) {
        m_outerTmpdir = outer;
    }
    ::setenv("TMPDIR", path().c_str(), 1);
}

PrivateDirectory::~PrivateDirectory() {
    if (m_outerTmpdir) {
        ::setenv("TMPDIR", m_outerTmpdir->c_str(), 1);
    } else {
        ::unsetenv("TMPDIR");
    }
}

} // namespace velmora
