#include "system/FileName.h"

#include "system/UnicodeCase.h"

namespace velmora {

namespace {

/// The position of the dot before the extension, or npos.
std::size_t extensionDot(std::string_view name) {
    const std::size_t dot = name.rfind('.');
    const std::size_t slash = name.rfind('/');
    const bool inLastComponent =
        slash == std::string_view::npos || (dot != std::string_view::npos && dot > slash);
    return inLastComponent ? dot : std::string_view::npos;
}

/// Whether `text` is absolute and has nothing to resolve.
bool isStandard(std::string_view text) {
    const auto holds = [&](std::string_view part) { return text.find(part) != std::string_view::npos; };
    return text.starts_with('/') && !text.ends_with('/') && !text.ends_with("/.") && !text.ends_with("/..") &&
           !holds("//") && !holds("/./") && !holds("/../");
}

} // namespace

std::string lastComponent(const std::filesystem::path& path) {
    std::string_view text = path.native();
    while (text.size() > 1 && text.back() == '/') {
        text.remove_suffix(1);
    }
    const std::size_t slash = text.rfind('/');
    if (slash == std::string_view::npos || text.size() == 1) {
        return std::string(text);
    }
    return std::string(text.substr(slash + 1));
}

std::string_view extensionOf(std::string_view name) {
    const std::size_t dot = extensionDot(name);
    return dot == std::string_view::npos ? std::string_view() : name.substr(dot + 1);
}

std::string_view withoutExtension(std::string_view name) {
    return name.substr(0, extensionDot(name));
}

std::string classifyingExtension(const std::filesystem::path& path) {
    return lowerCased(extensionOf(path.native()));
}

std::vector<std::string_view> parentFolders(std::string_view path) {
    std::vector<std::string_view> folders;
    for (std::size_t slash = path.find('/'); slash != std::string_view::npos;
         slash = path.find('/', slash + 1)) {
        folders.push_back(path.substr(0, slash));
    }
    return folders;
}

std::string standardized(const std::filesystem::path& path) {
    if (isStandard(path.native())) {
        return path.native();
    }
    std::string text = std::filesystem::absolute(path).lexically_normal().native();
    while (text.size() > 1 && text.back() == '/') {
        text.pop_back();
    }
    return text;
}

std::filesystem::path absolutePath(const std::filesystem::path& path) {
    namespace fs = std::filesystem;
    fs::path asGiven = fs::absolute(path);
    fs::path resolved = standardized(asGiven);
    if (resolved.native() == asGiven.native()) {
        return asGiven; // nothing to ask the system
    }
    std::error_code ignored;
    const bool samePlace = !fs::exists(asGiven, ignored) || fs::equivalent(asGiven, resolved, ignored);
    return samePlace ? resolved : asGiven;
}

} // namespace velmora
