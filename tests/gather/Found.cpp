#include "tests/gather/Found.h"

#include "gather/SourceWalker.h"

#include <algorithm>

namespace velmora::test {

GatherResult walked(const fs::path& path, int depth) {
    GatherResult found;
    Collector::walk(path, depth, found);
    return found;
}

std::vector<std::string> namesIn(const GatherResult& found, const fs::path& folder) {
    std::vector<std::string> names;
    for (const fs::path file : found.files) {
        std::string name = file.lexically_relative(folder);
        for (std::size_t i = 0; i < found.temps.size(); ++i) {
            const std::string start = found.temps[i].native() + "/";
            if (file.native().starts_with(start)) {
                name = "[" + std::to_string(i) + "]/" + file.native().substr(start.size());
            }
        }
        names.push_back(name);
    }
    std::sort(names.begin(), names.end());
    return names;
}

std::vector<std::string> filesBelow(const fs::path& folder) {
    std::vector<std::string> names;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(folder)) {
        if (entry.is_symlink() || !entry.is_directory()) {
            names.push_back(entry.path().lexically_relative(folder));
        }
    }
    std::sort(names.begin(), names.end());
    return names;
}

std::vector<std::string> awkwardNames() {
    std::vector<std::string> names = {
        "caf\xE9.wav",            // Latin-1
        "\xFF\xFE.wav",           // no encoding at all
        "line\nfeed.wav",         //
        "caf\xC3\xA9.wav",        // composed
        "cafe\xCC\x81.wav",       // decomposed
        "-x.wav",                 //
        "--help.wav",             //
        "Album [FLAC] *?.wav",    //
        "100%s%n.wav",            //
        "host:file.wav",          //
        "http:x.wav",             //
        "back\\slash.wav",        //
        "'quote\" $HOME `x`.wav", //
        " blank .wav",            //
        "\t.wav",                 //
        "\xE6\x97\xA5\xE6\x9C\xAC.wav",
        std::string(251, 'x') + ".wav",
    };
    std::sort(names.begin(), names.end());
    return names;
}

} // namespace velmora::test
