#include "cli/Options.h"

#include "records/Finding.h"
#include "system/Names.h"
#include "system/OptionReader.h"

#include <array>
#include <charconv>
#include <string_view>
#include <system_error>

namespace velmora {

namespace {

constexpr const char* shortOptions =
    ":lfj0:z:qVh"; // with the first colon, getopt reports a missing value as ':'

// Those without a letter.
constexpr int verboseOption = firstOptionWithoutLetter;
constexpr int checkOption = firstOptionWithoutLetter + 1;
constexpr int foldersOption = firstOptionWithoutLetter + 2;
constexpr int csvOption = firstOptionWithoutLetter + 3;
constexpr int speedOption = firstOptionWithoutLetter + 4;

const std::array<option, 14> longOptions = {{{"list", no_argument, nullptr, 'l'},
                                             {"files", no_argument, nullptr, 'f'},
                                             {"json", no_argument, nullptr, 'j'},
                                             {"folders", optional_argument, nullptr, foldersOption},
                                             {"csv", no_argument, nullptr, csvOption},
                                             {"speed", required_argument, nullptr, speedOption},
                                             {"files0-from", required_argument, nullptr, '0'},
                                             {"zip", required_argument, nullptr, 'z'},
                                             {"check", no_argument, nullptr, checkOption},
                                             {"quiet", no_argument, nullptr, 'q'},
                                             {"version", no_argument, nullptr, 'V'},
                                             {"verbose", no_argument, nullptr, verboseOption},
                                             {"help", no_argument, nullptr, 'h'},
                                             {nullptr, 0, nullptr, 0}}};

/// Chooses `wanted`, the first time or again.
std::optional<UsageError> choose(std::optional<Output>& output, Output wanted) {
    if (output.value_or(wanted) != wanted) {
        return UsageError{"only one of --list, --files, --folders, --csv and --json can be given"};
    }
    output = wanted;
    return std::nullopt;
}

/// Puts the number that is all of `text` into `number`; false if there is none between `min` and `max`.
template <typename Number>
bool takeNumber(std::string_view text, Number min, Number max, Number& number) {
    Number value{};
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    const bool isNumber = error == std::errc() && end == text.data() + text.size();
    if (!isNumber || !(value >= min && value <= max)) {
        return false;
    }
    number = value;
    return true;
}

std::optional<UsageError> takeDepth(const char* text, int& depth) {
    if (text == nullptr || takeNumber(text, 0, allLevels, depth)) {
        return std::nullopt;
    }
    return UsageError{"--folders takes a number of levels from 0 on, not " + quotedName(text)};
}

std::optional<UsageError> takeSpeed(const char* text, double& speed) {
    if (takeNumber(text, minSpeed, maxSpeed, speed)) {
        return std::nullopt;
    }
    return UsageError{"--speed takes a number from 0.1 to 10, not " + quotedName(text)};
}

/// A line a kind of finding.
std::string findingKindsText() {
    std::string text;
    for (const FindingKind kind : findingKinds) {
        constexpr std::size_t meaningAt = 11;
        std::string name(nameOf(kind));
        name.resize(meaningAt, ' ');
        text += "      " + name + std::string(meaningOf(kind)) + "\n";
    }
    return text;
}

/// What --version asks for: of all that follows only --verbose counts.
CommandLine versionWanted(OptionReader& reader, bool isVerbose) {
    for (int letter = reader.next(); letter != -1; letter = reader.next()) {
        isVerbose |= letter == verboseOption;
    }
    return isVerbose ? CommandLine(InstallationWanted{}) : CommandLine(TextWanted{versionText()});
}

} // namespace

CommandLine parseCommandLine(std::vector<std::string> arguments) {
    OptionReader reader(arguments, shortOptions, longOptions);
    Options options;
    std::optional<Output> output;
    std::optional<UsageError> error;
    bool isVerbose = false;
    for (int letter = reader.next(); letter != -1 && !error; letter = reader.next()) {
        switch (letter) {
        case 'l':
            error = choose(output, Output::list);
            break;
        case 'f':
            error = choose(output, Output::files);
            break;
        case 'j':
            error = choose(output, Output::json);
            break;
        case foldersOption:
            error = choose(output, Output::folders);
            error = error ? error : takeDepth(optarg, options.depth);
            break;
        case csvOption:
            error = choose(output, Output::csv);
            break;
        case speedOption:
            error = takeSpeed(optarg, options.speed);
            break;
        case '0':
            options.pathLists.emplace_back(optarg);
            break;
        case 'z':
            options.zip = optarg;
            break;
        case 'q':
            options.quiet = true;
            break;
        case checkOption:
            options.check = true;
            break;
        case 'V':
            return versionWanted(reader, isVerbose);
        case 'h':
            return TextWanted{helpText()};
        case verboseOption:
            isVerbose = true;
            break;
        default:
            error = UsageError{reader.error(letter)};
        }
    }
    if (error) {
        return *error;
    }
    if (isVerbose) {
        return UsageError{"--verbose goes with --version alone"};
    }
    if (options.check && output.value_or(Output::json) != Output::json) {
        return UsageError{"of the other outputs only --json goes with --check"};
    }
    if (options.check && options.speed != 1) {
        return UsageError{"--speed does not go with --check: what is checked is what files state"};
    }
    options.output = output.value_or(options.check ? Output::findings : Output::total);
    options.paths = reader.rest();
    if (options.paths.empty() && options.pathLists.empty()) {
        return UsageError{"no path given"};
    }
    return options;
}

std::string versionText() {
    return "velmora-scan " VELMORA_VERSION "\n";
}

std::string helpText() {
    return std::string(R"(Usage: velmora-scan [OPTION...] PATH...
Tells how long all the audio in files, folders and archives plays.

  -l, --list              write the names of the measured files
  -f, --files             write a line a file: seconds, a tab, the path
      --folders[=DEPTH]   write a line a folder: seconds, a tab, the number of
                          files, a tab, the folder. A folder counts with all
                          that is below it, an archive is a folder, and a file
                          that is given stands for its folder. DEPTH folders
                          are shown below each PATH; 0: the PATHs alone
      --csv               write a table of the files for spreadsheets (RFC 4180)
  -j, --json              write everything as one JSON object
      --speed X           divide all lengths by X, from 0.1 to 10: how long it
                          takes to listen at this speed
  -0, --files0-from FILE  scan the paths in FILE too, separated by NUL;
                          with - they are read from standard input
  -z, --zip FILE          pack the measured files into the zip archive FILE
      --check             read every file to its end and write a line a finding:
                          kind, seconds stated, seconds found, path, with tabs
                          between them; "-" for seconds that are not known:
)") + findingKindsText() +
           R"(  -q, --quiet             show no progress
  -V, --version           write the version
      --verbose           with --version: also the libraries, the wall around
                          tools, and the tools that are found
  -h, --help              write this help

Exit status: 0 everything was measured, 1 something could not be read or was
found by --check, 2 wrong usage, 3 nothing was measured, 4 the zip archive was
not written, 130 interrupted.
)";
}

} // namespace velmora
