#include "export/Zipper.h"

#include "export/EntryNames.h"
#include "export/ZipWriter.h"
#include "system/FileCopy.h"
#include "system/FileMove.h"
#include "system/FileName.h"
#include "system/Paths.h"
#include "system/TempRegistry.h"
#include "system/TemporaryDirectory.h"

#include <sys/stat.h>

#include <cerrno>
#include <new>
#include <optional>
#include <utility>

namespace velmora::Zipper {

namespace {

namespace fs = std::filesystem;

class ErrorDomain : public std::error_category {
public:
    const char* name() const noexcept override { return "Velmora"; }

    std::string message(int code) const override {
        switch (code) {
        case archiveNotWritten:
            return "The archive could not be written.";
        case notARegularFile:
            return "It is not a regular file.";
        default:
            return "Unknown error.";
        }
    }
};

[[noreturn]] void fail(const char* what, const fs::path& path, int error) {
    throw fs::filesystem_error(what, path, std::error_code(error, std::generic_category()));
}

void endIfStopped(const std::stop_token& stop) {
    if (stop.stop_requested()) {
        throw std::system_error(ECANCELED, std::generic_category());
    }
}

TemporaryDirectory makeStagingDirectory() {
    const fs::path path = TempRegistry::freshPath("zip-");
    std::optional<TemporaryDirectory> directory = TemporaryDirectory::make(path);
    if (!directory) {
        fail("cannot make a folder in", path.parent_path(), errno);
    }
    return std::move(*directory);
}

/// The name of the archive's one folder. Never one that stands for another folder: "...zip" would give "..".
std::string folderName(const fs::path& destination) {
    const std::string name = lastComponent(destination);
    const std::string_view stem = withoutExtension(name);
    return std::string(stem.empty() || stem == "." || stem == ".." ? "Audio" : stem);
}

/// A device, a FIFO or a socket is no archive's place, although its name could be given to one.
void refuseWhatIsNoFile(const fs::path& destination) {
    std::error_code error;
    const fs::file_status status = fs::status(destination, error);
    if (status.type() == fs::file_type::none) {
        throw fs::filesystem_error("cannot look at", destination, error);
    }
    if (fs::is_directory(status)) {
        fail("cannot replace", destination, EISDIR);
    }
    if (fs::exists(status) && !fs::is_regular_file(status)) {
        throw fs::filesystem_error("cannot replace", destination,
                                   std::error_code(notARegularFile, errorDomain()));
    }
}

void stage(const fs::path& file, const fs::path& staged, const std::stop_token& stop) {
    endIfStopped(stop);
    std::error_code error;
    fs::create_directories(staged.parent_path(), error);
    if (error) {
        throw fs::filesystem_error("cannot make the folder of", file, error);
    }
    copyFile(file, staged, stop);
}

} // namespace

const std::error_category& errorDomain() {
    static const ErrorDomain domain;
    return domain;
}

void zip(const Paths& files, const Paths& roots, const fs::path& destination, const Progress& progress,
         const std::stop_token& stop) {
    refuseWhatIsNoFile(destination);
    const TemporaryDirectory staging = makeStagingDirectory();
    const std::string name = folderName(destination);
    const fs::path content = staging.path() / name;
    if (::mkdir(content.c_str(), S_IRWXU) != 0) {
        fail("cannot make a folder for", destination, errno);
    }
    const std::vector<std::string> names = entryNames(files, roots);
    for (std::size_t i = 0; i < files.size(); ++i) {
        stage(files[i], content / names[i], stop);
        progress(static_cast<int>(i + 1), static_cast<int>(files.size()));
    }
    const fs::path archive = staging.path() / withEnding(name, ".zip");
    writeZip(archive, content, names, stop);
    endIfStopped(stop);
    moveReplacing(archive, destination, stop);
}

std::string description(const std::exception& error) {
    const auto* file = dynamic_cast<const fs::filesystem_error*>(&error);
    if (file != nullptr && !file->path1().empty()) {
        return lastComponent(file->path1()) + ": " + file->code().message();
    }
    if (dynamic_cast<const std::bad_alloc*>(&error) != nullptr) {
        return std::generic_category().message(ENOMEM);
    }
    const auto* system = dynamic_cast<const std::system_error*>(&error);
    return system != nullptr ? system->code().message() : error.what();
}

} // namespace velmora::Zipper
