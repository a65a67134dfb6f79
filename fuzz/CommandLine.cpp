// The arguments of velmora-scan.

#include "cli/Options.h"
#include "fuzz/Targets.h"

#include <algorithm>

namespace velmora::fuzz {

void fuzzCommandLine(Bytes bytes) {
    const std::vector<std::string> arguments = textsOf(bytes, 64);
    const CommandLine line = parseCommandLine(arguments);
    require(parseCommandLine(arguments) == line, "the answer is the same the second time");
    if (const auto* const error = std::get_if<UsageError>(&line)) {
        require(!error->text.empty(), "an error says why");
        require(std::ranges::none_of(error->text, [](char c) { return (c >= 0 && c < ' ') || c == '\x7F'; }),
                "an error holds nothing that acts on a terminal");
    }
    if (const auto* const options = std::get_if<Options>(&line)) {
        require(!options->paths.empty() || !options->pathLists.empty(), "a scan has paths");
        for (const std::filesystem::path& path : options->paths) {
            require(std::ranges::find(arguments, path.native()) != arguments.end(), "a path was given");
        }
    }

    std::vector<std::string> ended = arguments;
    ended.insert(ended.begin(), "--");
    const CommandLine paths = parseCommandLine(ended);
    if (!arguments.empty()) {
        require(paths == CommandLine(Options{.paths = Paths(arguments.begin(), arguments.end())}),
                "what comes after -- is a path");
    }
}

} // namespace velmora::fuzz
