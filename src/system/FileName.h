#pragma once

// The one rule for what a file name's extension is. Names are bytes; no rule here looks at their encoding.
//
//   track.WAV    -> extension "WAV", stem "track"
//   show.tar.gz  -> extension "gz",  stem "show.tar"
//   .mp3         -> extension "mp3", stem ""       (a leading dot separates like any other)
//   notes, end.  -> extension "",    stem "notes", "end"

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace velmora {

/// The last component of `path`; "Album" for both "/music/Album" and "/music/Album/". "/" for the root.
std::string lastComponent(const std::filesystem::path& path);

/// The bytes after the last dot of `name`'s last component; empty if there is none.
std::string_view extensionOf(std::string_view name);

/// `name` without its last component's final dot and what follows it; `name` itself if there is no dot.
std::string_view withoutExtension(std::string_view name);

/// The extension of `path` in Unicode lower case: the key by which files are classified.
std::string classifyingExtension(const std::filesystem::path& path);

/// The folders on the way to `path`, outermost first, without their final "/": "", "/music", "/music/Album"
/// for
/// "/music/Album/01.wav". They point into `path`'s memory.
std::vector<std::string_view> parentFolders(std::string_view path);

/// `path` in absolute form with "." and ".." resolved lexically and no trailing slash, as bytes.
/// Links are not followed and the file system is not consulted, beyond the working directory of a relative
/// path.
std::string standardized(const std::filesystem::path& path);

/// `path` in absolute form. "." and ".." are resolved where that leads to the same place: "link/.." is not
/// the folder that holds the link. Throws std::filesystem::filesystem_error when there is no working
/// directory.
std::filesystem::path absolutePath(const std::filesystem::path& path);

} // namespace velmora
