#include "cli/Sources.h"

#include "system/FileName.h"
#include "tests/support/Files.h"
#include "tests/support/ForkedProcess.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <system_error>

namespace velmora::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

/// Makes `folder` the working directory while it lives.
class WorkingFolder {
public:
    explicit WorkingFolder(const fs::path& folder) { fs::current_path(folder); }

    WorkingFolder(const WorkingFolder&) = delete;
    WorkingFolder& operator=(const WorkingFolder&) = delete;

    ~WorkingFolder() { fs::current_path(m_outer); }

private:
    fs::path m_outer = fs::current_path();
};

/// What a list that holds `text` names.
Paths namedIn(const std::string& text) {
    return givenPaths({.pathLists = {write(freshFolder() / "list", text)}}).paths();
}

TEST(GivenPaths, AreSplitAtNul) {
    using namespace std::string_literals;
    EXPECT_THAT(namedIn(""s), IsEmpty());
    EXPECT_THAT(namedIn("a"s), ElementsAre("a"));
    EXPECT_THAT(namedIn("a\0"s), ElementsAre("a"));
    EXPECT_THAT(namedIn("a\0b\nc"s), ElementsAre("a", "b\nc"));
    EXPECT_THAT(namedIn("a\0\0b\0"s), ElementsAre("a", "", "b"));
    EXPECT_THAT(namedIn("\0"s), ElementsAre(""));
    EXPECT_THAT(namedIn("\xFF\xFE\0"s), ElementsAre("\xFF\xFE"));
}

TEST(GivenPaths, AreWholeWhereverAReadEnds) {
    constexpr int count = 20'000; // of 9 to 11 bytes: more than a read takes
    std::string text;
    Paths expected;
    for (int i = 0; i < count; ++i) {
        expected.emplace_back("m/" + std::to_string(i) + ".flac");
        text += expected.back().native() + '\0';
    }
    EXPECT_EQ(namedIn(text), expected);
}

TEST(GivenPaths, AreThoseOfTheCommandLineThenThoseOfTheLists) {
    using namespace std::string_literals;
    const fs::path folder = freshFolder();
    const Options options{.paths = {"z"},
                          .pathLists = {write(folder / "one", "c\0b\0"s), write(folder / "two", "a"s)}};
    EXPECT_THAT(givenPaths(options).paths(), ElementsAre("z", "c", "b", "a"));
}

TEST(GivenPaths, NamesAListThatCannotBeRead) {
    const fs::path folder = freshFolder();
    for (const fs::path& list : {folder / "missing", folder}) {
        try {
            givenPaths({.pathLists = {list}});
            ADD_FAILURE() << list << " was read";
        } catch (const std::system_error& error) {
            EXPECT_THAT(error.what(), HasSubstr("cannot read the list '" + list.native() + "'"));
        }
    }
}

TEST(Sources, AreAbsoluteInTheirOrder) {
    const fs::path folder = freshFolder();
    write(folder / "b.wav");
    write(folder / "a" / "x.wav");
    const WorkingFolder here(folder);

    const Sources sources = locate({"b.wav", folder / "a", "./a/", "."});

    EXPECT_THAT(sources.paths.paths(), ElementsAre(folder / "b.wav", folder / "a", folder / "a", folder));
    EXPECT_THAT(sources.problems, IsEmpty());
}

TEST(Sources, LeaveOutWhatIsNotThereAndSayWhy) {
    const fs::path folder = freshFolder();
    write(folder / "there.wav");
    fs::create_symlink("nowhere", folder / "dangling.wav");
    const WorkingFolder here(folder);

    const Sources sources = locate({"gone\n.wav", "there.wav", "", "dangling.wav", "there.wav/below"});

    EXPECT_THAT(sources.paths.paths(), ElementsAre(folder / "there.wav"));
    EXPECT_THAT(sources.problems, ElementsAre("cannot read 'gone\\x0A.wav': No such file or directory",
                                              "cannot read '': No such file or directory",
                                              "cannot read 'dangling.wav': No such file or directory",
                                              "cannot read 'there.wav/below': Not a directory"));
}

TEST(Sources, LeaveOutAFolderThatCanNotBothBeListedAndEntered) {
    asOrdinaryUser([] {
        const fs::path folder = freshFolder();
        for (const auto permissions : {fs::perms::owner_read, fs::perms::owner_exec}) {
            const fs::path shut = folder / std::to_string(static_cast<unsigned>(permissions));
            write(shut / "a.wav");
            fs::permissions(shut, permissions);
            const Sources sources = locate({shut});
            EXPECT_THAT(sources.paths.paths(), IsEmpty());
            EXPECT_THAT(sources.problems,
                        ElementsAre("cannot read '" + shut.native() + "': Permission denied"));
        }
    });
}

TEST(Sources, KeepLinksAsTheyAre) {
    const fs::path folder = freshFolder();
    write(folder / "target" / "x.wav");
    fs::create_directory_symlink("target", folder / "link");
    EXPECT_THAT(locate({folder / "link"}).paths.paths(), ElementsAre(folder / "link"));
}

TEST(AbsolutePath, NeedsAWorkingDirectoryOnlyForARelativePath) {
    const fs::path folder = freshFolder();
    fs::create_directory(folder / "gone");
    const WorkingFolder here(folder / "gone");
    fs::remove(folder / "gone");

    EXPECT_EQ(absolutePath("/"), "/");
    EXPECT_THROW(absolutePath("x.zip"), fs::filesystem_error);
    EXPECT_THAT(locate({"."}).problems, ElementsAre("cannot read '.': No such file or directory"));
}

} // namespace
} // namespace velmora::test
