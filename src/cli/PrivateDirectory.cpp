#include "cli/PrivateDirectory.h"

#include "cli/DeadRuns.h"
#include "cli/Names.h"
#include "cli/RunLock.h"

#include <cerrno>
#include <cstdlib>
#include <system_error>

namespace velmora {

namespace {

namespace fs = std::filesystem;

/// A run that starts at the same time may take a new directory for a dead run's before it is locked. Then
/// another one is made, at most this often.
constexpr int maxAttempts = 100;

/// What TMPDIR names where there is no private directory: a place where nothing can be made.
constexpr const char* nowhere = "/dev/null";

/// Whether a lock failed because the file system knows none. No other run can have it there either, so none
/// takes the directory for a dead run's.
bool knowsNoLocks(int error) {
    return error == ENOLCK || error == EOPNOTSUPP || error == EINVAL || error == ENOSYS;
}

/// Whether another run was faster.
bool wasTaken(int error) {
    return error == EWOULDBLOCK || error == ENOENT;
}

} // namespace

PrivateDirectory::PrivateDirectory() {
    const fs::path parent = systemTemporaryDirectory();
    removeDeadRuns(parent);
    if (const int error = make(parent / runPrefix)) {
        m_problem = "cannot make a directory in " + quotedName(parent.native()) + ": " +
                    std::generic_category().message(error);
    }
    if (const char* outer = std::getenv("TMPDIR")) {
        m_outerTmpdir = outer;
    }
    ::setenv("TMPDIR", m_directory ? path().c_str() : nowhere, 1);
}

/// Makes and locks a directory whose path begins with `prefix`. Returns 0, or the errno that says why there
/// is none.
int PrivateDirectory::make(const fs::path& prefix) {
    int error = 0;
    for (int attempt = 0; attempt < maxAttempts; ++attempt) {
        m_directory = TemporaryDirectory::makeUnique(prefix);
        if (!m_directory) {
            return errno;
        }
        m_lock = lockRun(path());
        error = m_lock ? 0 : errno;
        if (error == 0 || knowsNoLocks(error)) {
            return 0;
        }
        if (!wasTaken(error)) {
            break;
        }
    }
    m_directory.reset();
    return error;
}

PrivateDirectory::~PrivateDirectory() {
    if (m_outerTmpdir) {
        ::setenv("TMPDIR", m_outerTmpdir->c_str(), 1);
    } else {
        ::unsetenv("TMPDIR");
    }
}

} // namespace velmora
