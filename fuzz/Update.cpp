// The release manifest and the versions in it, as they come from the network.

#include "fuzz/Targets.h"
#include "update/Manifest.h"
#include "update/Version.h"

namespace velmora::fuzz {

void fuzzManifest(Bytes bytes) {
    const QByteArray body(reinterpret_cast<const char*>(bytes.data()), static_cast<qsizetype>(bytes.size()));
    const auto release = UpdateChecker::parseManifest(body);
    require(UpdateChecker::parseManifest(body) == release, "the answer is the same the second time");
    if (release) {
        require(release->url.isValid() && !release->url.isEmpty(), "a release has a URL");
        for (const QChar blank : {QChar(u' '), QChar(u'\t')}) {
            require(!release->version.startsWith(blank) && !release->version.endsWith(blank),
                    "no blanks stand around a version");
        }
        const std::string version = release->version.toStdString();
        require(!UpdateChecker::isNewer(version, version), "no version is newer than itself");
    }
}

void fuzzVersion(Bytes bytes) {
    std::vector<std::string> versions = textsOf(bytes, 3);
    versions.resize(3);
    for (const std::string& a : versions) {
        require(!UpdateChecker::isNewer(a, a), "no version is newer than itself");
        for (const std::string& b : versions) {
            require(!UpdateChecker::isNewer(a, b) || !UpdateChecker::isNewer(b, a),
                    "of two versions one is newer at most");
            for (const std::string& c : versions) {
                require(!UpdateChecker::isNewer(a, b) || UpdateChecker::isNewer(a, c) ||
                            UpdateChecker::isNewer(c, b),
                        "a third version is older than the newer or newer than the older");
            }
        }
    }
}

} // namespace velmora::fuzz
