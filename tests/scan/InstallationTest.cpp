#include "scan/Installation.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

namespace velmora::test {
namespace {

using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

TEST(Installation, NamesLibrariesLayersAndTools) {
    const std::string report = installationReport();
    EXPECT_THAT(report, StartsWith("libraries:\n  Qt "));
    for (const char* const line :
         {"\n  ICU ", "\n  libzip ", "\n  libavformat ", "\n  libseccomp ",
          "\nwall around tools:\n  read-only mounts: ", "\n  Landlock: ", "\n  seccomp: ",
          "\ntools:\n  /usr/bin/tar\n", "\n  /usr/bin/unzip\n", "/ffprobe\n"}) {
        EXPECT_THAT(report, HasSubstr(line));
    }
    EXPECT_THAT(report, Not(HasSubstr("not found")));
    EXPECT_THAT(report, Not(HasSubstr("is not there")));
}

} // namespace
} // namespace velmora::test
