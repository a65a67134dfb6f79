#include "tests/support/OwnMounts.h"

#include "tests/support/ForkedProcess.h"

#include <gtest/gtest.h>
#include <sched.h>
#include <sys/mount.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <fstream>
#include <string>

namespace velmora::test {

namespace {

void expectDone(int result, const std::string& what) {
    EXPECT_EQ(result, 0) << what << ": " << std::strerror(errno);
}

/// Says who the user is inside a new user namespace: root.
void mapToRoot(uid_t user, gid_t group) {
    std::ofstream("/proc/self/setgroups") << "deny";
    std::ofstream("/proc/self/uid_map") << "0 " << user << " 1";
    std::ofstream("/proc/self/gid_map") << "0 " << group << " 1";
}

} // namespace

void inOwnMounts(const std::function<void()>& body) {
    inProcess([&] {
        const uid_t user = ::geteuid();
        const gid_t group = ::getegid();
        expectDone(::unshare(CLONE_NEWUSER | CLONE_NEWNS), "a user namespace");
        mapToRoot(user, group);
        expectDone(::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr), "private mounts");
        body();
    });
}

void mountSmallDisk(const fs::path& folder, std::size_t bytes, std::size_t files) {
    const std::string options = "size=" + std::to_string(bytes) + ",nr_inodes=" + std::to_string(files);
    expectDone(::mount("none", folder.c_str(), "tmpfs", 0, options.c_str()), "a small disk");
}

void mountReadOnly(const fs::path& folder) {
    expectDone(::mount("none", folder.c_str(), "tmpfs", MS_RDONLY, nullptr), "a disk that is not written");
}

void replaceTool(const fs::path& tool, std::string_view script) {
    const fs::path replacement = write(freshFolder() / "tool", "#!/bin/sh\n" + std::string(script) + "\n");
    fs::permissions(replacement, fs::perms(0755));
    expectDone(::mount(replacement.c_str(), fs::canonical(tool).c_str(), nullptr, MS_BIND, nullptr), tool);
}

void hideTool(const fs::path& tool) {
    expectDone(::mount("/dev/null", fs::canonical(tool).c_str(), nullptr, MS_BIND, nullptr), tool);
}

} // namespace velmora::test
