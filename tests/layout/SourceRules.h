#pragma once

// The rules of the house that a compiler does not check: which folder may include which, which of them see
// Qt, and how long a file may be. The arrows drawn in ARCHITECTURE.md are a table in the .cpp.

#include <filesystem>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace velmora::test {

/// The top folder of the sources that are looked at.
inline const std::filesystem::path project = VELMORA_SOURCE_DIR;

inline constexpr int maxLines = 299;

/// One line "#include <...>" or "#include \"...\"".
struct Include {
    std::string name; ///< what stands between the brackets or quotes
    bool quoted = false;

    bool operator==(const Include&) const = default;
};

/// The include lines of a source text, in their order.
std::vector<Include> includesOf(std::string_view text);

/// What is wrong with the include lines of the file `path` ("gather/ScanOrder.cpp", relative to src/) whose
/// content is `text`: a sentence each, none if all is well.
std::vector<std::string> wrongIncludes(const std::filesystem::path& path, std::string_view text);

/// The types that the QML text `qml` makes items of, each time one is made: "Rectangle", "NeonButton".
std::vector<std::string> usedTypes(std::string_view qml);

/// The folder of src/ that each of our own QML types stands in: "NeonButton" in "ui/kit".
using TypeFolders = std::map<std::string, std::string, std::less<>>;

/// What is wrong with the types that the QML file `path` (relative to src/) with content `qml` uses: a
/// sentence each, none if all is well. Types that are not in `folders` are Qt's.
std::vector<std::string> wrongTypes(const std::filesystem::path& path, std::string_view qml,
                                    const TypeFolders& folders);

/// The Qt module that `header`, as written between angle brackets, belongs to: "QtCore" for "QObject" and for
/// "QtCore/qobject.h". "" for a header that is not Qt's, "unknown" for one that no installed module has.
std::string qtModule(const std::string& header);

/// The number of lines in `text`; a last one without line feed counts.
int lineCount(std::string_view text);

} // namespace velmora::test
