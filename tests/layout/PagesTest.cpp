// Follows every link of every page, and looks that the pages name what there is.

#include "tests/layout/Links.h"
#include "tests/layout/SourceRules.h"
#include "tests/support/Files.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <regex>
#include <set>
#include <string>
#include <vector>

namespace velmora::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;

/// The text of each .md file by its path in the project.
std::map<fs::path, std::string> allPages() {
    std::map<fs::path, std::string> pages;
    for (fs::recursive_directory_iterator entry(project), end; entry != end; ++entry) {
        const std::string name = entry->path().filename();
        if (entry->is_directory() && (name == "build" || name == ".git")) {
            entry.disable_recursion_pending();
        } else if (name.ends_with(".md")) {
            pages[entry->path().lexically_relative(project)] = read(entry->path());
        }
    }
    return pages;
}

/// Every test in the sources, as "Suite.Name".
std::set<std::string> allTests() {
    static const std::regex definition(R"(\bTEST(?:_F|_P)?\((\w+),\s*(\w+)\))");
    std::set<std::string> tests;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(project / "tests")) {
        if (entry.path().extension() == ".cpp") {
            const std::string source = read(entry.path());
            for (std::sregex_iterator match(source.begin(), source.end(), definition), end; match != end;
                 ++match) {
                tests.insert((*match)[1].str() + "." + (*match)[2].str());
            }
        }
    }
    return tests;
}

TEST(Pages, EveryLinkLeadsSomewhere) {
    int followed = 0;
    for (const auto& [page, text] : allPages()) {
        for (const std::string& link : linksOf(text)) {
            ++followed;
            const std::size_t hash = std::min(link.find('#'), link.size());
            const fs::path target = hash == 0 ? page : page.parent_path() / link.substr(0, hash);
            EXPECT_TRUE(fs::exists(project / target)) << page << " links to " << link;
            if (hash < link.size() && fs::exists(project / target)) {
                EXPECT_THAT(anchorsOf(read(project / target)), Contains(link.substr(hash + 1)))
                    << page << " links to " << link;
            }
        }
    }
    EXPECT_GT(followed, 5) << "the pages were not found";
}

TEST(Pages, EveryPictureIsShown) {
    std::set<fs::path> shown;
    for (const auto& [page, text] : allPages()) {
        for (const std::string& link : linksOf(text)) {
            shown.insert((page.parent_path() / link).lexically_normal());
        }
    }
    for (const fs::directory_entry& picture : fs::directory_iterator(project / "docs/pictures")) {
        EXPECT_THAT(shown, Contains(picture.path().lexically_relative(project)));
    }
}

TEST(Pages, NameWhatThereIs) {
    int named = 0;
    for (const auto& [page, text] : allPages()) {
        for (const std::string& path : pathsNamedIn(text)) {
            ++named;
            EXPECT_TRUE(fs::exists(project / path)) << page << " names " << path;
        }
    }
    EXPECT_GT(named, 10) << "the pages were not found";
}

TEST(Pages, NameTestsThatThereAre) {
    const std::set<std::string> tests = allTests();
    int named = 0;
    for (const auto& [page, text] : allPages()) {
        for (const std::string& test : testsNamedIn(text)) {
            ++named;
            EXPECT_THAT(tests, Contains(test)) << page << " names " << test;
        }
    }
    EXPECT_GT(named, 50) << "the pages were not found";
}

TEST(Pages, TheArchitectureNamesEveryFolderOfTheSources) {
    const std::string architecture = read(project / "ARCHITECTURE.md");
    for (const fs::directory_entry& entry : fs::directory_iterator(project / "src")) {
        if (entry.is_directory()) {
            EXPECT_THAT(architecture, HasSubstr("`src/" + entry.path().filename().native() + "`"));
        }
    }
}

TEST(Links, AreReadFromTextAndNotFromCode) {
    EXPECT_THAT(linksOf("See [the page](docs/page.md) and ![a picture](a.png \"its title\").\n"
                        "| ![one](1.png) | ![two](2.png) |\n"
                        "[project]: https://velmora.example\n"
                        "[licence]: LICENSE\n"
                        "<img src=\"3.png\" width=\"10\">\n"
                        "`[no](link.md)`\n"
                        "```\n[no](link.md)\n```\n"
                        "[here](#place)\n"),
                ElementsAre("docs/page.md", "a.png", "1.png", "2.png", "LICENSE", "3.png", "#place"));
}

TEST(Links, ToHeadingsAreTheirWordsInLowerCase) {
    EXPECT_THAT(anchorsOf("# Add a format\n```\n# no heading\n```\n## Who's `velmora-scan`?\n"),
                ElementsAre("add-a-format", "whos-velmora-scan"));
}

TEST(NamedPaths, AreCodeThatStartsInAFolderOfTheProject) {
    EXPECT_THAT(
        pathsNamedIn("`src/ui/kit`, `tests/layout/Links.h`, `build/dev`, `./dev test`, `src/NAME.cpp`,\n"
                     "src/system, `tests/measure/*`, `src/ui or so`, `docs/`\n"
                     "```\n`src/scan`\n```\n"),
        ElementsAre("src/ui/kit", "tests/layout/Links.h", "docs/"));
}

TEST(NamedTests, AreCodeOfTwoWords) {
    EXPECT_THAT(testsNamedIn("`Pages.NameWhatThereIs`, `Links.h`, Pages.Bare, `ARCHITECTURE.md`,\n"
                             "| `A1.B2` |\n```\n`In.Code`\n```\n"),
                ElementsAre("Pages.NameWhatThereIs", "A1.B2"));
}

} // namespace
} // namespace velmora::test
