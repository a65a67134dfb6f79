#pragma once

#include "tests/support/Files.h"
#include "tests/support/Shell.h"

#include <string>

namespace velmora::test {

/// The most memory that velmora-scan had with these arguments, run in `folder`, in KiB.
inline double peak(const std::string& arguments, const fs::path& folder) {
    const std::string script = "import resource, subprocess, sys\n"
                               "subprocess.run(sys.argv[1:], check=True, stdout=subprocess.DEVNULL)\n"
                               "print(resource.getrusage(resource.RUSAGE_CHILDREN).ru_maxrss)";
    return std::stod(
        shell("python3 -Bc " + shellWord(script) + " " + shellWord(VELMORA_SCAN) + " " + arguments, folder));
}

} // namespace velmora::test
