// Files that are cut, replaced or removed while a scan is at work on them. The scan stops itself at a call
// that is yet to concern the file; the file changes; the scan goes on.

#include "tests/faults/Surroundings.h"
#include "tests/support/ForkedProcess.h"
#include "tests/support/RealAudio.h"
#include "tests/support/Shell.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>

namespace velmora::test {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;

class Change : public testing::Test {
protected:
    static constexpr std::string_view old = "an archive that was there before";

    /// Scans and packs the set, lets `change` happen at the call, and expects that nothing is left.
    Finished scan(const std::string& call, const std::function<void()>& change) const {
        const fs::path temporary = freshFolder();
        ScanProcess process({.arguments = {"-f", "-z", zip, "Set"},
                             .folder = folder,
                             .environment = meeting(call, temporary)});
        EXPECT_TRUE(stops(process)) << "no such call: " << call;
        change();
        process.send(SIGCONT);
        Finished finished = process.wait();
        EXPECT_THAT(namesIn(temporary), IsEmpty());
        return finished;
    }

    std::string lineOf(const fs::path& file, const std::string& seconds) const {
        return seconds + "\t" + file.native() + "\n";
    }

    const fs::path folder = freshFolder();
    const fs::path first = writeWav(folder / "Set" / "1.wav", oneSecond);
    const fs::path second = writeWav(folder / "Set" / "2.wav", oneSecond);
    const fs::path zip = write(folder / "Mix.zip", old);
};

TEST_F(Change, RemovedBeforeItIsMeasuredTheFileIsNamed) {
    const Finished run = scan("open:1:stop:2.wav", [&] { fs::remove(second); });
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.output, lineOf(first, "1.000") + lineOf(second, "-"));
    EXPECT_THAT(run.errors, HasSubstr("'" + second.native() + "'"));
    EXPECT_EQ(shell("unzip -Z1 Mix.zip", folder), "Mix/\nMix/1.wav\n");
}

TEST_F(Change, EmptiedBeforeItIsMeasuredTheFileIsNamed) {
    const Finished run = scan("open:1:stop:2.wav", [&] { fs::resize_file(second, 0); });
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.output, lineOf(first, "1.000") + lineOf(second, "-"));
    EXPECT_THAT(run.errors, HasSubstr("'" + second.native() + "'"));
}

TEST_F(Change, ReplacedBeforeItIsMeasuredItIsMeasuredAsItIs) {
    const Finished run = scan("open:1:stop:2.wav", [&] {
        writeWav(folder / "new.wav", {.frames = 16'000, .rate = 8'000, .channels = 1});
        fs::rename(folder / "new.wav", second);
    });
    EXPECT_EQ(run.status, 0) << run.errors;
    EXPECT_EQ(run.output, lineOf(first, "1.000") + lineOf(second, "2.000"));
    EXPECT_TRUE(shell("unzip -p Mix.zip Mix/2.wav", folder) == read(second));
}

TEST_F(Change, ReplacedByAFifoItIsNamedAndNobodyWaits) {
    const Finished run =
        scan("open:1:stop:2.wav", [&] { shell("rm Set/2.wav && mkfifo Set/2.wav", folder); });
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.output, lineOf(first, "1.000") + lineOf(second, "-"));
}

TEST_F(Change, CutWhileItIsReadTheFileIsNotLongerThanItWas) {
    const Finished run = scan("pread:1:stop:2.wav", [&] { fs::resize_file(second, 44 + 8'000); });
    EXPECT_EQ(run.output.substr(0, run.output.find('\n') + 1), lineOf(first, "1.000"));
    EXPECT_THAT(run.output,
                testing::AnyOf(HasSubstr(lineOf(second, "1.000")), HasSubstr(lineOf(second, "0.500")),
                               HasSubstr(lineOf(second, "-"))));
}

TEST_F(Change, RemovedBeforeItIsPackedTheOldZipStays) {
    const Finished run = scan("mkdir:1:stop:velmora-zip-", [&] { fs::remove(second); });
    EXPECT_EQ(run.status, 4);
    EXPECT_EQ(run.errors, "velmora-scan: cannot write the zip archive: 2.wav: No such file or directory\n");
    EXPECT_EQ(run.output, lineOf(first, "1.000") + lineOf(second, "1.000"));
    EXPECT_EQ(read(zip), old);
}

TEST_F(Change, CutBeforeItIsPackedItIsPackedAsItIs) {
    const Finished run = scan("mkdir:1:stop:velmora-zip-", [&] { fs::resize_file(second, 100); });
    EXPECT_EQ(run.status, 0) << run.errors;
    EXPECT_TRUE(shell("unzip -p Mix.zip Mix/2.wav", folder) == read(second));
}

TEST_F(Change, ThatTakesRightsBeforeItIsPackedKeepsTheOldZip) {
    const Finished run =
        scan("mkdir:1:stop:velmora-zip-", [&] { shell("rm Set/2.wav && mkdir Set/2.wav", folder); });
    EXPECT_EQ(run.status, 4);
    EXPECT_THAT(run.errors, HasSubstr("cannot write the zip archive: 2.wav: "));
    EXPECT_EQ(read(zip), old);
}

TEST_F(Change, RemovedBeforeItIsUnpackedTheArchiveIsNamed) {
    shell("zip -q Set/more.zip Set/1.wav", folder);
    const Finished run = scan("open:1:stop:more.zip", [&] { fs::remove(folder / "Set" / "more.zip"); });
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.output, lineOf(first, "1.000") + lineOf(second, "1.000"));
    EXPECT_THAT(run.errors, HasSubstr("cannot unpack '" + (folder / "Set" / "more.zip").native() + "'"));
}

/// Where the file system does not tell what the entries are, and they may not be looked at.
TEST_F(Change, OfRightsBeforeItIsListedTheFolderIsNamed) {
    writeWav(folder / "Set" / "Disc 2" / "Deep" / "3.wav", oneSecond);
    fs::permissions(folder / "Set" / "Disc 2", fs::perms(0444));
    asOrdinaryUser([&] {
        const Finished run =
            runToEnd({.arguments = {"Set"}, .folder = folder, .environment = meeting("list:1+:unknown")});
        EXPECT_EQ(run.status, 1);
        EXPECT_THAT(run.errors, HasSubstr("'" + (folder / "Set" / "Disc 2").native() + "'"));
    });
}

TEST_F(Change, RemovedBeforeItIsListedTheFolderIsNamed) {
    writeWav(folder / "Set" / "Disc 2" / "3.wav", oneSecond);
    const Finished run = scan("open:1:stop:Disc 2", [&] { fs::remove_all(folder / "Set" / "Disc 2"); });
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.output, lineOf(first, "1.000") + lineOf(second, "1.000"));
    EXPECT_THAT(run.errors, HasSubstr("'" + (folder / "Set" / "Disc 2").native() + "'"));
}

} // namespace
} // namespace velmora::test
