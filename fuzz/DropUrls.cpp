// What another program drops on the window: a list of URLs.

#include "app/desktop/FileUrls.h"
#include "fuzz/Targets.h"

namespace velmora::fuzz {

void fuzzDropUrls(Bytes bytes) {
    const QByteArrayView list(reinterpret_cast<const char*>(bytes.data()),
                              static_cast<qsizetype>(bytes.size()));
    const Paths paths = pathsOfUriList(list);
    require(pathsOfUriList(list) == paths, "paths are the same the second time");
    for (const std::filesystem::path& path : paths) {
        require(path.is_absolute(), "a path is absolute");
        require(path.native().find('\0') == std::string::npos, "a path holds no NUL");
        require(pathOfUrl(urlOfPath(path)) == path, "a path comes back from its URL");
    }
}

} // namespace velmora::fuzz
