#pragma once

// Packs files into one zip archive: stages copies under their relative paths in a temporary directory, has
// ZipWriter write the archive there, and only then puts it in place of the destination.

#include "system/Paths.h"

#include <exception>
#include <filesystem>
#include <functional>
#include <stop_token>
#include <string>
#include <system_error>
#include <vector>

namespace velmora::Zipper {

/// Called after each staged file, on the thread that packs. Must not throw.
using Progress = std::function<void(int done, int total)>;

/// The program's own errors: domain "Velmora". Code 1 reads "The archive could not be written.", code 2 "It
/// is not a regular file.".
const std::error_category& errorDomain();
inline constexpr int archiveNotWritten = 1;
inline constexpr int notARegularFile = 2;

/// Packs `files` into a zip archive at `destination`, replacing a regular file that is there, and nothing
/// else. The archive holds one folder named as the destination without its extension; in it the files stand
/// under `relativePath`, duplicates numbered from 2. Blocks until done. Throws std::system_error (a file
/// system's error, or one of `errorDomain`); nothing temporary is left then, and an old archive at
/// `destination` is whole. `stop` ends it with ECANCELED.
void zip(const Paths& files, const Paths& roots, const std::filesystem::path& destination,
         const Progress& progress, const std::stop_token& stop = {});

/// The path of `file` inside the archive's folder: relative to the first of `roots` it lies in, else its name
/// alone.
std::string relativePath(const std::filesystem::path& file, const Paths& roots);

/// What to tell the user of an error that `zip` threw: the system's reason, after the name of the file it
/// concerns if it concerns one: "01.wav: No such file or directory".
std::string description(const std::exception& error);

} // namespace velmora::Zipper
