#include "gather/ScanOrder.h"

#include "system/Paths.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <random>
#include <string>

namespace velmora {

namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;
namespace fs = std::filesystem;

/// Sorts under the locale `locale`, named as LC_ALL names it.
class ScanOrder : public testing::Test {
protected:
    ScanOrder() {
        for (const char* variable : {"LC_ALL", "LC_COLLATE", "LANG"}) {
            ::unsetenv(variable);
        }
    }

    static FilePaths sorted(FilePaths files, const Paths& temps = {}) {
        Collector::sortScanOrder(files, temps);
        return files;
    }

    /// Expects that `files` come out in this order, in whichever they came in.
    static void expectOrder(const FilePaths& files, const Paths& temps = {}) {
        FilePaths shuffled = files;
        std::mt19937 random(1); // NOLINT(bugprone-random-generator-seed): the same each time
        for (int i = 0; i < 20; ++i) {
            std::shuffle(shuffled.begin(), shuffled.end(), random);
            EXPECT_THAT(sorted(shuffled, temps), ElementsAreArray(files));
        }
    }
};

TEST_F(ScanOrder, ComparesNumbersByTheirValue) {
    expectOrder({"/m/track 1.wav", "/m/track 2.wav", "/m/track 10.wav", "/m/track 100.wav"});
    expectOrder({"/m/CD 2/9.wav", "/m/CD 2/10.wav", "/m/CD 10/1.wav"});
    expectOrder({"/m/7" + std::string(300, '0') + ".wav", "/m/8" + std::string(300, '0') + ".wav"});
}

TEST_F(ScanOrder, ComparesToTheEndOfLongPaths) {
    const std::string folder = "/m/" + std::string(5'000, 'x');
    expectOrder({folder + " 1.wav", folder + " 2.wav", folder + " 10.wav"});
}

TEST_F(ScanOrder, IgnoresCase) {
    expectOrder({"/m/a.wav", "/m/B.wav", "/m/c.wav"});
    expectOrder({"/m/A/1.wav", "/m/a/2.wav", "/m/A/3.wav"});
    expectOrder({"/m/Ärzte 1.wav", "/m/ärzte 2.wav", "/m/ÄRZTE 3.wav"});
}

TEST_F(ScanOrder, HeedsAccentsOnlyAfterLetters) {
    expectOrder({"/m/cote.wav", "/m/COTÉ.wav", "/m/cotes.wav"});
}

TEST_F(ScanOrder, BreaksTiesByBytes) {
    expectOrder({"/m/001.wav", "/m/01.wav", "/m/1.wav", "/m/2.wav"});
    expectOrder({"/m/A.WAV", "/m/A.wav", "/m/a.WAV", "/m/a.wav"});
    expectOrder({"/m/cafe\xCC\x81.wav", "/m/caf\xC3\xA9.wav"}); // decomposed, composed
}

TEST_F(ScanOrder, KeepsEqualPathsTogether) {
    EXPECT_THAT(sorted({"/m/b.wav", "/m/a.wav", "/m/b.wav"}),
                ElementsAre("/m/a.wav", "/m/b.wav", "/m/b.wav"));
}

TEST_F(ScanOrder, SortsNothingAndOne) {
    EXPECT_THAT(sorted({}), ElementsAre());
    EXPECT_THAT(sorted({"/m/a.wav"}, {"/m"}), ElementsAre("/m/a.wav"));
}

TEST_F(ScanOrder, IsTheSameWhateverThePathsHaveInCommon) {
    const FilePaths files = {"/Músic/1/Disc 2/1.wav", "/Músic/1/Disc 2/10.wav", "/Músic/1/Disc 10/2.wav",
                             "/Músic/1/Disc 10/é.wav", "/Músic/1/Disc 10/\xCC\x81.wav"};
    FilePaths withAnother = files;
    withAnother.emplace_back("/0.wav"); // now only the first slash is common
    FilePaths expected = sorted(withAnother);
    ASSERT_EQ(expected.front(), "/0.wav");
    expected.erase(expected.begin());
    EXPECT_EQ(sorted(files), expected);
    EXPECT_EQ(sorted({files[1], files[0]}), (FilePaths{files[0], files[1]})); // not the digit in common
}

TEST_F(ScanOrder, TakesNamesThatAreNotUtf8) {
    expectOrder({"/m/a\xE9 2.wav", "/m/a\xE9 10.wav", "/m/b\xFF.wav", "/m/b\xFF\xFE.wav", "/m/c.wav"});
    expectOrder({"/m/x\xE8.wav", "/m/x\xE9.wav", "/m/x\xEA.wav"});
}

TEST_F(ScanOrder, PutsTheContentOfArchivesLast) {
    expectOrder({"/z/b/2.wav", "/z/b/10.wav", "/tmp/velmora-AB/x.wav"}, {"/tmp/velmora-AB"});
}

TEST_F(ScanOrder, KeepsTheFilesOfAnArchiveTogether) {
    expectOrder({"/z/1.wav", "/tmp/velmora-AB/1.wav", "/tmp/velmora-AB/2.wav", "/tmp/velmora-CD/1.wav",
                 "/tmp/velmora-CD/10.wav"},
                {"/tmp/velmora-CD", "/tmp/velmora-AB"});
}

TEST_F(ScanOrder, TellsADirectoryFromOneWhoseNameBeginsTheSame) {
    expectOrder({"/tmp/velmora-ABC/1.wav", "/tmp/velmora-AB/1.wav"}, {"/tmp/velmora-AB"});
    expectOrder({"/tmp/velmora-AB", "/tmp/velmora-AB/1.wav"}, {"/tmp/velmora-AB"});
    expectOrder({"/tmp/Velmora-AB/1.wav", "/tmp/velmora-AB/1.wav"}, {"/tmp/velmora-AB"});
}

TEST_F(ScanOrder, ComparesDirectoriesInStandardForm) {
    const FilePaths files = {"/tmp/z.wav", "/tmp/y/../velmora-AB/./1.wav"};
    for (const char* temp :
         {"/tmp/velmora-AB", "/tmp/velmora-AB/", "/tmp//velmora-AB", "/tmp/x/../velmora-AB/."}) {
        expectOrder(files, {temp});
    }
    expectOrder({"/tmp/velmora-AB/../z.wav", "/tmp/velmora-AB/1.wav"}, {"/tmp/velmora-AB"});
}

TEST_F(ScanOrder, FollowsTheUsersLocale) {
    const FilePaths german = {"/m/a.wav", "/m/ä.wav", "/m/z.wav"};
    const FilePaths swedish = {"/m/a.wav", "/m/z.wav", "/m/ä.wav"};
    expectOrder(german);
    for (const char* name : {"sv_SE.UTF-8", "sv_SE", "sv", "sv_SE.UTF-8@modifier"}) {
        ::setenv("LC_ALL", name, 1);
        expectOrder(swedish);
    }
    for (const char* name :
         {"de_DE.UTF-8", "C", "POSIX", "C.UTF-8", "C.utf8", "en_US.UTF-8", "xx_YY", "@", "%"}) {
        ::setenv("LC_ALL", name, 1);
        expectOrder(german);
        expectOrder({"/m/a 2.wav", "/m/B 2.wav", "/m/b 10.wav"});
    }
}

TEST_F(ScanOrder, LooksForTheLocaleWhereTheSystemDoes) {
    const FilePaths german = {"/m/a.wav", "/m/ä.wav", "/m/z.wav"};
    const FilePaths swedish = {"/m/a.wav", "/m/z.wav", "/m/ä.wav"};
    ::setenv("LANG", "sv_SE.UTF-8", 1);
    expectOrder(swedish);
    ::setenv("LC_COLLATE", "de_DE.UTF-8", 1);
    expectOrder(german);
    ::setenv("LC_ALL", "sv_SE.UTF-8", 1);
    expectOrder(swedish);
    ::setenv("LC_ALL", "", 1);
    expectOrder(german);
}

TEST_F(ScanOrder, HeedsFoldersInEveryLocale) {
    // Thai sorts as if punctuation were not there, unless told otherwise.
    for (const char* name : {"C", "th_TH.UTF-8"}) {
        ::setenv("LC_ALL", name, 1);
        expectOrder({"/m/a/z.wav", "/m/ab/a.wav", "/m/b.wav"});
    }
}

} // namespace

} // namespace velmora
