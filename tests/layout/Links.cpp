#include "tests/layout/Links.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <functional>
#include <ranges>
#include <regex>

namespace velmora::test {

namespace {

const std::regex codeSpan("`([^`]*)`");

/// Calls `visit` with every line that is outside of blocks of code.
void forEachLine(std::string_view page, const std::function<void(const std::string& line)>& visit) {
    bool inCode = false;
    for (const auto part : std::views::split(page, '\n')) {
        const std::string line(part.begin(), part.end());
        if (line.starts_with("```")) {
            inCode = !inCode;
        } else if (!inCode) {
            visit(line);
        }
    }
}

/// Appends the first group of every match of `pattern` in `line` to `found`.
void collect(const std::string& line, const std::regex& pattern, std::vector<std::string>& found) {
    for (std::sregex_iterator match(line.begin(), line.end(), pattern), end; match != end; ++match) {
        found.push_back((*match)[1]);
    }
}

bool leadsOutside(const std::string& target) {
    static const std::regex scheme("^[a-z]+:.*");
    return std::regex_match(target, scheme);
}

bool isPath(const std::string& code) {
    static const std::array folders = {"bench/", "cmake/", "docs/", "src/", "tests/", "tools/", ".ci/"};
    static const std::regex plain("[a-z0-9_./A-Z-]+");
    static const std::regex placeholder("(^|.*[/.])[A-Z]{2,}([/.].*|$)");
    return std::ranges::any_of(folders, [&](const char* folder) { return code.starts_with(folder); }) &&
           std::regex_match(code, plain) && !std::regex_match(code, placeholder);
}

} // namespace

std::vector<std::string> linksOf(std::string_view page) {
    static const std::regex inlineLink("\\]\\(([^) ]+)[^)]*\\)");
    static const std::regex reference("^\\[[^\\]]+\\]: +(\\S+)");
    static const std::regex attribute("(?:src|href)=\"([^\"]+)\"");
    std::vector<std::string> links;
    forEachLine(page, [&](const std::string& line) {
        const std::string text = std::regex_replace(line, codeSpan, "code");
        for (const std::regex* const pattern : {&inlineLink, &reference, &attribute}) {
            collect(text, *pattern, links);
        }
    });
    std::erase_if(links, leadsOutside);
    return links;
}

std::vector<std::string> pathsNamedIn(std::string_view page) {
    std::vector<std::string> paths;
    forEachLine(page, [&](const std::string& line) { collect(line, codeSpan, paths); });
    std::erase_if(paths, std::not_fn(isPath));
    return paths;
}

std::vector<std::string> testsNamedIn(std::string_view page) {
    static const std::regex test("`([A-Z][A-Za-z0-9]+\\.[A-Z][A-Za-z0-9]+)`");
    std::vector<std::string> tests;
    forEachLine(page, [&](const std::string& line) { collect(line, test, tests); });
    return tests;
}

std::vector<std::string> anchorsOf(std::string_view page) {
    static const std::regex heading("^#+ +(.*)$");
    std::vector<std::string> anchors;
    forEachLine(page, [&](const std::string& line) { collect(line, heading, anchors); });
    for (std::string& anchor : anchors) {
        std::erase_if(anchor, [](unsigned char c) { return std::ispunct(c) != 0 && c != '-' && c != '_'; });
        std::ranges::transform(anchor, anchor.begin(), [](unsigned char c) {
            return c == ' ' ? '-' : static_cast<char>(std::tolower(c));
        });
    }
    return anchors;
}

} // namespace velmora::test
