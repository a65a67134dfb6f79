#include "tests/layout/SourceRules.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <optional>
#include <regex>
#include <span>

namespace velmora::test {

namespace {

/// A floor of the house: a folder of src/.
struct Floor {
    std::string_view name;
    std::vector<std::string_view> mayInclude; ///< floors below it
    std::vector<std::string_view> qtModules;  ///< "*" is every module
};

const std::array floors = {
    Floor{"system", {}, {}},
    Floor{"records", {"system"}, {}},
    Floor{"confine", {"system"}, {}},
    Floor{"gather", {"confine", "records", "system"}, {}},
    Floor{"measure/bytes", {"records", "system"}, {}},
    Floor{"measure/frames", {"measure/bytes", "records", "system"}, {}},
    Floor{"measure/libav", {"measure/bytes", "records", "system"}, {}},
    Floor{"measure/formats", {"measure/bytes", "measure/frames", "measure/libav", "records", "system"}, {}},
    Floor{"measure/check", {"measure/bytes", "measure/frames", "measure/formats", "records", "system"}, {}},
    Floor{"measure",
          {"measure/bytes", "measure/frames", "measure/libav", "measure/formats", "confine", "records",
           "system"},
          {}},
    Floor{"tools", {"measure", "measure/bytes", "records", "system"}, {}},
    Floor{"export", {"records", "system"}, {}},
    Floor{"scan",
          {"gather", "measure", "measure/check", "measure/libav", "export", "confine", "records", "system"},
          {"QtCore"}},
    Floor{"cli", {"scan", "records", "system"}, {"QtCore"}},
    Floor{"update", {}, {"QtCore", "QtNetwork"}},
    Floor{"ui/kit", {}, {"*"}},
    Floor{"ui/scenery", {"ui/kit"}, {"*"}},
    Floor{"ui/content", {"ui/kit", "ui/scenery", "scan", "records", "system"}, {"*"}},
    Floor{"ui/details", {"ui/kit", "ui/content", "scan", "records", "system"}, {"*"}},
    Floor{"ui/panel", {"ui/kit", "records", "system"}, {"*"}},
    Floor{"ui/window", {"ui/kit", "ui/scenery", "ui/content", "ui/details", "ui/panel"}, {"*"}},
    Floor{"ui", {"ui/kit"}, {"*"}},
    Floor{"screenshots", {"ui", "ui/kit", "ui/content", "scan", "records", "system"}, {"*"}},
    Floor{"app/desktop", {"system"}, {"*"}},
    Floor{"app/panels", {"app/desktop", "ui/kit", "ui/panel", "ui/window", "system"}, {"*"}},
    Floor{"app",
          {"app/desktop", "app/panels", "screenshots", "ui", "ui/kit", "ui/content", "ui/details", "ui/panel",
           "ui/window", "update", "scan", "records", "system"},
          {"*"}},
};

bool contains(std::span<const std::string_view> list, std::string_view wanted) {
    return std::ranges::find(list, wanted) != list.end();
}

std::string floorOf(const std::filesystem::path& path) {
    return path.parent_path().native();
}

const Floor* findFloor(std::string_view name) {
    const auto* const floor = std::ranges::find(floors, name, &Floor::name);
    return floor == floors.end() ? nullptr : floor;
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
    if (to == from.name || contains(from.mayInclude, to)) {
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
    const Floor* const from = findFloor(floorOf(path));
    if (from == nullptr) {
        return {path.native() + ": no arrow is drawn for " + floorOf(path)};
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

std::vector<std::string> usedTypes(std::string_view qml) {
    static const std::regex use("(?:^|\\n) *(?:[a-zA-Z.]+: )?([A-Z][A-Za-z]*) \\{");
    std::vector<std::string> types;
    for (std::cregex_iterator match(qml.data(), qml.data() + qml.size(), use), end; match != end; ++match) {
        types.push_back((*match)[1]);
    }
    return types;
}

std::vector<std::string> wrongTypes(const std::filesystem::path& path, std::string_view qml,
                                    const TypeFolders& folders) {
    const Floor* const from = findFloor(floorOf(path));
    if (from == nullptr) {
        return {path.native() + ": no arrow is drawn for " + floorOf(path)};
    }
    std::vector<std::string> wrong;
    for (const std::string& type : usedTypes(qml)) {
        const auto folder = folders.find(type);
        if (folder != folders.end() && folder->second != from->name &&
            !contains(from->mayInclude, folder->second)) {
            wrong.push_back(path.native() + ": " + std::string(from->name) + " must not show " + type +
                            " of " + folder->second);
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
