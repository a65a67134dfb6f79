// An extraction that nobody waits for any more.

#include "gather/ArchiveExtraction.h"
#include "tests/support/Archives.h"
#include "tests/support/Shell.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <thread>

namespace velmora {

namespace {

using Collector::extract;
using Collector::Extracted;
using test::freshFolder;
using test::temporaryItems;
using test::write;
using testing::IsEmpty;
namespace fs = std::filesystem;

TEST(ArchiveExtraction, EndsItsToolsAtARequestToStop) {
    // A tar archive of 4 GiB in 4 MiB: one member of zeros, compressed a piece at a time.
    const fs::path folder = freshFolder();
    const test::Bytes header =
        test::tarArchive({{.name = "zeros.wav", .declaredSize = std::uint64_t{4} << 30}});
    write(folder / "header", test::Bytes(header.begin(), header.begin() + 512));
    test::shell("gzip -c header > large.tgz; truncate -s 64M piece; gzip -k piece;"
                "for i in $(seq 64); do cat piece.gz; done >> large.tgz",
                folder);
    std::stop_source stop;
    Extracted result;
    std::thread extraction([&] { result = extract(folder / "large.tgz", stop.get_token()); });
    const auto isUnpacking = [] {
        const std::vector<std::string> items = temporaryItems();
        return std::any_of(items.begin(), items.end(), [](const std::string& item) {
            return !item.starts_with("velmora-src-") && !fs::is_empty(fs::temp_directory_path() / item);
        });
    };
    while (!isUnpacking()) {
        std::this_thread::yield();
    }
    EXPECT_THAT(temporaryItems(), testing::Contains(testing::MatchesRegex(
                                      "velmora-src-[0-9A-F]{8}(-[0-9A-F]{4}){3}-[0-9A-F]{12}-large.tgz")));
    stop.request_stop();
    extraction.join();
    EXPECT_EQ(result, Extracted{.why = Reason::stopped});
    EXPECT_THAT(temporaryItems(), IsEmpty());
}

TEST(ArchiveExtraction, DoesNotBeginAfterARequestToStop) {
    std::stop_source stop;
    stop.request_stop();
    const fs::path archive = write(freshFolder() / "a.tar", test::tarArchive({{.name = "01.wav"}}));
    EXPECT_EQ(extract(archive, stop.get_token()), Extracted{.why = Reason::stopped});
    EXPECT_THAT(temporaryItems(), IsEmpty());
}

} // namespace

} // namespace velmora
