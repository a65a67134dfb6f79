#include "system/PrivateDirectory.h"

#include "system/DeadRuns.h"
#include "system/RemoveTree.h"
#include "system/RunLock.h"

#include <cerrno>
#include <string>

namespace velmora {

namespace {

/// A run that starts at the same time may take a new directory for a dead run's before it is locked. Then
/// another one is made, at most this often.
constexpr int maxAttempts = 100;

std::filesystem::path presentDirectory;

} // namespace

PrivateDirectory::PrivateDirectory()
    : m_parent(temporaryDirectory()) {
    removeDeadRuns(m_parent);
    m_failure = std::error_code(make(), std::generic_category());
    // Without a directory of our own, a path that nothing has: temporary items are swept by their names, and
    // what has such a name in the parent may be a user's.
    setTemporaryDirectory(m_directory ? m_directory->path()
                                      : m_parent / (std::string(runPrefix) + "missing"));
    presentDirectory = m_directory ? m_directory->path() : std::filesystem::path();
}

PrivateDirectory::~PrivateDirectory() {
    remove();
    setTemporaryDirectory({});
}

bool PrivateDirectory::remove() {
    presentDirectory.clear();
    const bool gone = !m_directory || removeTree(m_directory->release());
    m_directory.reset();
    return gone;
}

const std::filesystem::path& PrivateDirectory::present() {
    return presentDirectory;
}

int PrivateDirectory::make() {
    int error = 0;
    for (int attempt = 0; attempt < maxAttempts; ++attempt) {
        m_directory = TemporaryDirectory::makeUnique(m_parent / runPrefix);
        if (!m_directory) {
            return errno;
        }
        m_lock = lockRun(m_directory->path());
        error = m_lock ? 0 : errno;
        if (error == 0 || error == ENOLCK) { // where nothing can be locked, nothing is taken for a dead run's
            return 0;
        }
        m_directory.reset();
        if (!wasTaken(error)) {
            return error;
        }
    }
    return error;
}

} // namespace velmora
