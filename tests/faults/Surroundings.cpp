#include "tests/faults/Surroundings.h"

#include <gtest/gtest.h>
#include <sys/wait.h>

namespace velmora::test {

Launch::Variables meeting(const std::string& fault, const fs::path& temporary) {
    return {{"LD_PRELOAD", VELMORA_FAULT_INJECTOR}, {"VELMORA_FAULT", fault}, {"TMPDIR", temporary}};
}

bool stops(const ScanProcess& process) {
    siginfo_t info{};
    EXPECT_EQ(::waitid(P_PID, static_cast<id_t>(process.id()), &info, WSTOPPED | WEXITED | WNOWAIT), 0);
    return info.si_code == CLD_STOPPED;
}

} // namespace velmora::test
