#include "gather/SourceWalker.h"

#include "gather/ArchiveExtraction.h"
#include "records/AudioExtensions.h"
#include "system/FileName.h"
#include "system/FolderReader.h"
#include "system/GradualReadAhead.h"
#include "system/TempRegistry.h"
#include "system/UnicodeCase.h"

#include <optional>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

namespace velmora::Collector {

namespace {

namespace fs = std::filesystem;

enum class Kind : std::uint8_t { audio, archive, neither };

Kind kindOf(std::string_view name) {
    if (name.starts_with("._")) { // the companion of another file, with its icon or comment
        return Kind::neither;
    }
    const std::string extension = lowerCased(extensionOf(name));
    if (isAudio(extension)) {
        return Kind::audio;
    }
    return isArchive(extension) ? Kind::archive : Kind::neither;
}

/// What the paths of all that lies in `folder` begin with.
FilePath::Folder sharedBegin(const std::string& folder) {
    return std::make_shared<const std::string>(folder.ends_with('/') ? folder : folder + '/');
}

/// Whether the entry is an item of our own in the temporary directory: what comes out of an archive is found
/// through the archive, and not once more where it was unpacked.
bool isTemporary(const std::string& folder, std::string_view name) {
    return name.starts_with(TempRegistry::prefix) && TempRegistry::isTemporaryDirectory(folder);
}

/// One walk, into archives and out again.
class Walk {
public:
    Walk(GatherResult& found, const std::stop_token& stop, const Unpacking& unpacking)
        : m_found(found)
        , m_stop(stop)
        , m_unpacking(unpacking) {}

    /// `next` is the item after it, or empty.
    void item(const fs::path& path, int depth, const fs::path& next) {
        std::error_code error;
        const fs::file_status status = fs::status(path, error);
        if (fs::is_directory(status)) {
            folder(path.native(), depth, next);
        } else if (fs::exists(status)) {
            file(path, depth, next);
        } else if (status.type() == fs::file_type::none) { // it may be there, but cannot be looked at
            m_found.unreadableFolders.push_back({path, error.value()});
        }
    }

private:
    /// Goes through the tree below `top` with one folder open at a time. A folder that cannot be opened, be
    /// it for its permissions or because its path is too long, is noted. An archive is unpacked when it is
    /// known which one comes after it.
    void folder(std::string top, int depth, const fs::path& next) {
        fs::path waiting; // an archive, or none
        std::vector<std::string> pending = {std::move(top)};
        while (!pending.empty()) {
            const std::string current = std::move(pending.back());
            pending.pop_back();
            const FilePath::Folder shared = sharedBegin(current);
            FolderReader reader(current);
            while (const std::optional<FolderEntry> entry = reader.next()) {
                if (m_stop.stop_requested()) {
                    return;
                }
                if (entry->name.starts_with('.') || isTemporary(current, entry->name)) {
                    continue;
                }
                if (entry->kind == EntryKind::folder) {
                    pending.push_back(FilePath(shared, entry->name).native());
                } else if (const Kind kind = kindOf(entry->name); kind == Kind::audio) {
                    m_found.files.push_back({shared, entry->name});
                } else if (kind == Kind::archive) {
                    const fs::path unpackedNow = std::exchange(waiting, FilePath(shared, entry->name));
                    archive(unpackedNow, depth, waiting);
                }
            }
            if (reader.error() != 0) {
                m_found.unreadableFolders.push_back({current, reader.error()});
            }
        }
        if (!m_stop.stop_requested()) {
            archive(waiting, depth, next);
        }
    }

    /// `path`, with the folder of the file found last where it is the same.
    FilePath sharing(const FilePath& path) const {
        return m_found.files.empty() ? path : path.sharing(m_found.files.back());
    }

    void file(const fs::path& path, int depth, const fs::path& next) {
        switch (kindOf(lastComponent(path))) {
        case Kind::audio:
            m_found.files.push_back(sharing(path));
            break;
        case Kind::archive:
            archive(path, depth, next);
            break;
        case Kind::neither:
            break;
        }
    }

    /// An empty path is no archive.
    void archive(const fs::path& path, int depth, const fs::path& next) {
        if (path.empty()) {
            return;
        }
        readAhead(depth, next);
        const Extracted content =
            depth <= maxArchiveDepth ? unpacked(path) : Extracted{.why = Reason::tooDeep};
        if (content.why) {
            m_found.skippedArchives.push_back({path, *content.why});
            return;
        }
        m_found.temps.push_back(*content.directory);
        m_found.archives.push_back(path);
        item(*content.directory, depth + 1, {});
    }

    /// What came out of an archive is in the system's cache already.
    void readAhead(int depth, const fs::path& next) {
        if (depth == 0 && kindOf(lastComponent(next)) == Kind::archive) {
            m_readAhead = GradualReadAhead(next);
        }
    }

    Extracted unpacked(const fs::path& archive) {
        tell(archive);
        Extracted content = extract(archive, m_stop, [this] { m_readAhead.step(); });
        tell({});
        return content;
    }

    void tell(const fs::path& archive) const {
        if (m_unpacking) {
            m_unpacking(archive);
        }
    }

    GatherResult& m_found;
    const std::stop_token& m_stop;
    const Unpacking& m_unpacking;
    GradualReadAhead m_readAhead; // of the archive after the one that is being unpacked
};

} // namespace

void walk(const fs::path& path, int depth, GatherResult& found, const std::stop_token& stop,
          const Unpacking& unpacking, const fs::path& next) {
    if (!stop.stop_requested()) {
        Walk(found, stop, unpacking).item(path, depth, next);
    }
}

} // namespace velmora::Collector
