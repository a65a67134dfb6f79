// The commands of docs/recipes.md, on the files that the page tells of.

#include "tests/support/Files.h"
#include "tests/support/RealAudio.h"
#include "tests/support/Shell.h"

#include <gtest/gtest.h>

#include <fstream>
#include <string>
#include <vector>

namespace velmora::test {
namespace {

constexpr std::string_view home = "/home/ann";

struct Recipe {
    std::string commands;
    std::string output; ///< as the page shows it
};

/// The recipes of `page`: blocks of "sh", each with the block after it.
std::vector<Recipe> recipesIn(const fs::path& page) {
    std::vector<Recipe> recipes;
    std::string* block = nullptr;
    std::ifstream lines(page);
    for (std::string line; std::getline(lines, line);) {
        if (!line.starts_with("```")) {
            if (block != nullptr) {
                *block += line + "\n";
            }
        } else if (block != nullptr) {
            block = nullptr;
        } else if (line == "```sh") {
            block = &recipes.emplace_back().commands;
        } else if (line == "```" && !recipes.empty()) {
            block = &recipes.back().output;
        }
    }
    return recipes;
}

/// `text` with `to` for each `from`.
std::string replaced(std::string text, std::string_view from, std::string_view to) {
    for (std::size_t at = text.find(from); at != std::string::npos; at = text.find(from, at + to.size())) {
        text.replace(at, from.size(), to);
    }
    return text;
}

AudioShape lasting(int seconds) {
    return {.frames = seconds * 8'000, .rate = 8'000, .channels = 1};
}

/// The folder that stands for /home/ann.
fs::path makeHome() {
    const fs::path folder = freshFolder();
    const fs::path live = folder / "Music/Anna Björk - Live";
    encodeAudio(live / "01 Opening.flac", lasting(28));
    writeWav(live / "02 Rain.wav", lasting(40));
    encodeAudio(folder / "Music/Interview.flac", lasting(52));
    writeWav(folder / "Day 1/harbour.wav", lasting(28));
    writeWav(folder / "Day 1/market.wav", lasting(40));
    shell("zip -qrm 'Music/Field recordings.zip' 'Day 1'", folder);
    write(folder / "Music/party.m3u",
          "#EXTM3U\r\n#EXTINF:40,Rain\r\nAnna Björk - Live/02 Rain.wav\r\nInterview.flac\r\n");
    shell("cp -r Music Backup", folder);
    const fs::path rain = folder / "Backup/Anna Björk - Live/02 Rain.wav";
    fs::resize_file(rain, fs::file_size(rain) - 15 * 16'000);
    return folder;
}

TEST(Recipes, WriteWhatThePageShows) {
    const fs::path folder = makeHome();
    const std::vector<Recipe> recipes = recipesIn(RECIPES);
    ASSERT_GE(recipes.size(), 9U);
    for (const Recipe& recipe : recipes) {
        const fs::path script = write(folder / "script", recipe.commands);
        const std::string command = "PATH=" + shellWord(fs::path(VELMORA_SCAN).parent_path().native()) +
                                    ":\"$PATH\" bash " + shellWord(script.native());
        const std::string output = tryShell(command, folder).output;
        EXPECT_EQ(replaced(replaced(output, folder.native(), home), "\r", ""), recipe.output)
            << recipe.commands;
    }
}

} // namespace
} // namespace velmora::test
