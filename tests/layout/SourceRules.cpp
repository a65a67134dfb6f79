#include "layout/SourceRules.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <optional>
#include <span>
#include <utility>

namespace velmora::test {

namespace {

/// A floor of the house: a folder of src/, or some files of one.
struct Floor {
    std::string_view name;
    std::vector<std::string_view> mayInclude; ///< floors, or single headers
    std::vector<std::string_view> qtModules;  ///< "*" is every module
};

const std::array floors = {
    Floor{"system", {}, {}},
    Floor{"records", {"system"}, {}},
    Floor{"gather", {"records", "system"}, {}},
    Floor{"measure", {"records", "system"}, {}},
    Floor{"export", {"records", "system", "gather/TempRegistry.h", "gather/ToolRunner.h"}, {}},
    Floor{"model", {"gather", "measure", "export", "records", "system"}, {"QtCore"}},
    Floor{"cli", {"model", "records", "system"}, {"QtCore"}},
    Floor{"update", {"system"}, {"QtCore", "QtNetwork"}},
    Floor{"ui", {"model", "update", "records", "system"}, {"*"}},
    Floor{"screenshots", {"ui", "model", "update", "records", "system"}, {"*"}},
    Floor{"window", {"screenshots", "ui", "model", "update", "records", "system"}, {"*"}},
};

/// The files that are another floor than the rest of their folder.
constexpr std::array<std::pair<std::string_view, std::string_view>, 4> ownFloors = {{
    {"core/Records.h", "records"},
    {"core/DisplayFormat.h", "records"},
    {"core/DisplayFormat.cpp", "records"},
    {"ui/main.cpp", "window"},
}};

bool contains(std::span<const std::string_view> list, std::string_view wanted) {
    return std::find(list.begin(), list.end(), wanted) != list.end();
}

std::string floorOf(const std::filesystem::path& path) {
    for (const auto& [file, floor] : ownFloors) {
        if (path == file) {
            return std::string(floor);
        }
    }
    std::string folder = path.begin()->native();
    return folder == "core" ? "model" : folder;
}

std::optional<std::string> wrongOwnInclude(const Floor& from, const std::string& header) {
    if (header.ends_with(".cpp")) {
        return header + " is not a header";
    }
    if (header.ends_with(".moc")) {
        return std::nullopt;
    }
    if (header.find('/') == std::string::npos) {
        return header + " does not name its folder";
    }
    const std::string to = floorOf(header);
    if (to == from.name || contains(from.mayInclude, to) || contains(from.mayInclude, header)) {
        return std::nullopt;
    }
    return std::string(from.name) + " must not include " + header;
}

std::optional<std::string> wrongQtInclude(const Floor& from, const std::string& header) {
    const std::string module = qtModule(header);
    if (module.empty() || contains(from.qtModules, "*") || contains(from.qtModules, module)) {
        return std::nullopt;
    }
    return std::string(from.name) + " must not see " + header + " of " + module;
}

} // namespace

std::vector<Include> includesOf(std::string_view text) {
    std::vector<Include> includes;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        std::string_view line = text.substr(0, end);
        text.remove_prefix(std::min(end + 1, text.size()));
        for (const std::string_view word : {"#", "include"}) {
            line.remove_prefix(std::min(line.find_first_not_of(" \t"), line.size()));
            const bool found = line.starts_with(word);
            line = found ? line.substr(word.size()) : std::string_view();
        }
        const std::size_t open = line.find_first_of("<\"");
        const std::size_t close = line.find_first_of(">\"", open + 1);
        if (open != std::string_view::npos && close != std::string_view::npos) {
            includes.push_back({std::string(line.substr(open + 1, close - open - 1)), line[open] == '"'});
        }
    }
    return includes;
}

std::vector<std::string> wrongIncludes(const std::filesystem::path& path, std::string_view text) {
    const std::string name = floorOf(path);
    const auto* const from = std::find_if(floors.begin(), floors.end(),
                                          [&name](const Floor& floor) { return floor.name == name; });
    if (from == floors.end()) {
        return {path.native() + ": no arrow is drawn for " + name};
    }
    std::vector<std::string> wrong;
    for (const Include& include : includesOf(text)) {
        const std::optional<std::string> reason =
            include.quoted ? wrongOwnInclude(*from, include.name) : wrongQtInclude(*from, include.name);
        if (reason) {
            wrong.push_back(path.native() + ": " + *reason);
        }
    }
    return wrong;
}

std::string qtModule(const std::string& header) {
    const std::filesystem::path headers(VELMORA_QT_HEADERS);
    const std::size_t slash = header.find('/');
    if (slash != std::string::npos) {
        return header.starts_with("Qt") ? header.substr(0, slash) : "";
    }
    for (const auto& module : std::filesystem::directory_iterator(headers)) {
        if (exists(module.path() / header)) {
            return module.path().filename().native();
        }
    }
    const bool looksLikeQt =
        header.size() > 1 && header[0] == 'Q' && std::isupper(static_cast<unsigned char>(header[1])) != 0;
    return looksLikeQt ? "unknown" : "";
}

int lineCount(std::string_view text) {
    const auto lineFeeds = std::count(text.begin(), text.end(), '\n');
    const bool openEnd = !text.empty() && text.back() != '\n';
    return static_cast<int>(lineFeeds) + (openEnd ? 1 : 0);
}

} // namespace velmora::test
