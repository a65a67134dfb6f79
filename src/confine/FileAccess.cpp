#include "confine/FileAccess.h"

#include <fcntl.h>
#include <linux/landlock.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <cstddef>
#include <initializer_list>

namespace velmora {

namespace {

using Rights = std::uint64_t;

// Younger than the kernel headers of Debian 12 (linux/landlock.h, same names).
constexpr Rights accessTruncate = 1U << 14;    // version 3
constexpr Rights accessIoctlDevice = 1U << 15; // version 5
constexpr std::uint64_t netBindTcp = 1U << 0;  // version 4
constexpr std::uint64_t netConnectTcp = 1U << 1;
constexpr std::uint64_t scopeAbstractSocket = 1U << 0; // version 6
constexpr std::uint64_t scopeSignal = 1U << 1;

/// struct landlock_ruleset_attr as version 6 has it.
struct RulesetAttributes {
    std::uint64_t handledFiles = 0;
    std::uint64_t handledNet = 0;
    std::uint64_t scoped = 0;
};

constexpr Rights reading = LANDLOCK_ACCESS_FS_READ_FILE | LANDLOCK_ACCESS_FS_READ_DIR;
constexpr Rights running = reading | LANDLOCK_ACCESS_FS_EXECUTE;
constexpr Rights writing = reading | LANDLOCK_ACCESS_FS_WRITE_FILE | LANDLOCK_ACCESS_FS_REMOVE_DIR |
                           LANDLOCK_ACCESS_FS_REMOVE_FILE | LANDLOCK_ACCESS_FS_MAKE_DIR |
                           LANDLOCK_ACCESS_FS_MAKE_REG | LANDLOCK_ACCESS_FS_MAKE_SYM |
                           LANDLOCK_ACCESS_FS_MAKE_FIFO | LANDLOCK_ACCESS_FS_REFER | accessTruncate;
constexpr Rights nodes =
    LANDLOCK_ACCESS_FS_MAKE_CHAR | LANDLOCK_ACCESS_FS_MAKE_BLOCK | LANDLOCK_ACCESS_FS_MAKE_SOCK;
constexpr Rights onFiles = LANDLOCK_ACCESS_FS_EXECUTE | LANDLOCK_ACCESS_FS_READ_FILE |
                           LANDLOCK_ACCESS_FS_WRITE_FILE | accessTruncate;

constexpr int oldest = 2;

/// Programs, and what they need to start. A place may be a link to another, or not be there.
constexpr std::initializer_list<const char*> programPlaces = {"/bin",
                                                              "/sbin",
                                                              "/lib",
                                                              "/lib32",
                                                              "/lib64",
                                                              "/libx32",
                                                              "/usr/bin",
                                                              "/usr/sbin",
                                                              "/usr/lib",
                                                              "/usr/lib32",
                                                              "/usr/lib64",
                                                              "/usr/libx32",
                                                              "/usr/local/bin",
                                                              "/usr/local/lib",
                                                              "/etc/ld.so.cache",
                                                              "/etc/ld.so.preload"};

/// Their data: languages, users, groups, the time zone.
constexpr std::initializer_list<const char*> dataPlaces = {"/usr", "/etc/passwd", "/etc/group",
                                                           "/etc/nsswitch.conf", "/etc/localtime"};

class Ruleset {
public:
    explicit Ruleset(int version)
        : m_handled(running | writing | nodes | (version >= 5 ? accessIoctlDevice : 0)) {
        if (version < 3) {
            m_handled &= ~accessTruncate;
        }
        RulesetAttributes attributes{.handledFiles = m_handled};
        std::size_t size = offsetof(RulesetAttributes, handledNet);
        if (version >= 4) {
            attributes.handledNet = netBindTcp | netConnectTcp;
            size = offsetof(RulesetAttributes, scoped);
        }
        if (version >= 6) {
            attributes.scoped = scopeAbstractSocket | scopeSignal;
            size = sizeof attributes;
        }
        m_descriptor = static_cast<int>(::syscall(SYS_landlock_create_ruleset, &attributes, size, 0));
        if (m_descriptor < 0) {
            throw WallError("cannot make a Landlock ruleset");
        }
    }

    /// Allows `rights` at `path` and below. Where nothing is, nothing is allowed.
    void allow(const std::filesystem::path& path, Rights rights) const {
        const int place = ::open(path.c_str(), O_PATH | O_CLOEXEC);

        struct stat status {};

        if (place < 0 || ::fstat(place, &status) != 0) {
            return;
        }
        const Rights possible = S_ISDIR(status.st_mode) ? rights : rights & onFiles;
        const landlock_path_beneath_attr rule{.allowed_access = possible & m_handled, .parent_fd = place};
        if (::syscall(SYS_landlock_add_rule, m_descriptor, LANDLOCK_RULE_PATH_BENEATH, &rule, 0) != 0) {
            throw WallError("cannot add a Landlock rule");
        }
        ::close(place);
    }

    void apply() const {
        if (::syscall(SYS_landlock_restrict_self, m_descriptor, 0) != 0) {
            throw WallError("cannot apply the Landlock ruleset");
        }
    }

private:
    Rights m_handled;
    int m_descriptor = -1;
};

} // namespace

int fileAccessVersion() {
    const long version = ::syscall(SYS_landlock_create_ruleset, nullptr, 0, LANDLOCK_CREATE_RULESET_VERSION);
    return static_cast<int>(std::max(version, 0L));
}

Layer restrictFiles(const Rules& rules, const std::filesystem::path& tool) {
    const int version = fileAccessVersion();
    if (version < oldest) {
        return Layer::notOffered;
    }
    const Ruleset ruleset(version);
    for (const char* place : programPlaces) {
        ruleset.allow(place, running);
    }
    if (rules.reach == Reach::system) {
        for (const char* place : dataPlaces) {
            ruleset.allow(place, running);
        }
    }
    ruleset.allow(tool, running);
    ruleset.allow("/dev/null", reading | LANDLOCK_ACCESS_FS_WRITE_FILE | accessTruncate);
    if (!rules.readable.empty()) {
        ruleset.allow(rules.readable, LANDLOCK_ACCESS_FS_READ_FILE);
    }
    if (!rules.writable.empty()) {
        ruleset.allow(rules.writable, writing);
    }
    ruleset.apply();
    return Layer::stands;
}

} // namespace velmora
