#include "tests/scan/ReferenceModel.h"

#include <algorithm>
#include <cstdio>
#include <utility>

namespace velmora::test {

Drop Drop::of(const Paths& urls) {
    Drop drop{.urls = urls, .files = {}, .skipped = {}};
    int files = 0;
    int skipped = 0;
    std::sscanf(urls.front().filename().c_str(), "%d-%d", &files, &skipped);
    for (int i = 0; i < files; ++i) {
        drop.files.push_back(urls.front().parent_path() / (std::to_string(i) + ".wav"));
    }
    drop.skipped.assign(static_cast<std::size_t>(skipped), {"/m/broken.zip", Reason::noTool});
    return drop;
}

std::string Drop::source() const {
    return urls.size() == 1 ? urls.front().filename().string() : std::to_string(urls.size()) + " ITEMS";
}

double lengthOf(const fs::path& file) {
    return std::stoi(file.stem()) % 4 - 1;
}

std::vector<Measured> measuredOf(const Paths& files) {
    std::vector<Measured> result;
    for (const fs::path& file : files) {
        result.push_back({file, lengthOf(file), 10});
    }
    std::erase_if(result, [](const Measured& file) { return file.seconds < 0; });
    return result;
}

Lines ReferenceModel::ingest(const Drop& drop) {
    cancel();
    m_drop = drop;
    m_files = 0;
    m_scan = m_streams.size();
    add(scanOf(drop));
    const std::string dropped = std::to_string(drop.urls.size()) + " dropped '";
    return {"phase scanning",
            "summary 0/0 0 dropped ''",
            "summary 0/0 " + dropped + "'",
            "processed 0",
            "found 0",
            "zip idle",
            "status READING SOURCE",
            "summary 0/0 " + dropped + drop.source() + "'"};
}

Lines ReferenceModel::reset() {
    cancel();
    m_files = 0;
    return {"phase idle", "summary 0/0 0 dropped ''", "processed 0", "found 0", "status ", "zip idle"};
}

Lines ReferenceModel::makeZip(const fs::path& destination, bool filesExist) {
    if (m_files == 0) {
        return {};
    }
    const std::string total = "/" + std::to_string(m_files);
    Stream zip;
    for (int done = 1; filesExist && done <= m_files; ++done) {
        zip.lines.push_back("zip working " + std::to_string(done) + total);
    }
    const std::string first = measuredOf(m_drop.files).front().url.name();
    zip.lines.push_back(filesExist ? "zip done " + destination.native()
                                   : "zip failed " + first + ": No such file or directory");
    add(std::move(zip));
    return {"zip working 0" + total};
}

bool ReferenceModel::takes(const std::string& line) {
    std::set<Positions> next;
    for (const Positions& positions : m_possible) {
        for (std::size_t i = 0; i < m_streams.size(); ++i) {
            if (const std::size_t after = afterLine(m_streams[i], positions[i], line); after > 0) {
                Positions moved = positions;
                moved[i] = after;
                next.insert(std::move(moved));
            }
        }
    }
    m_possible = std::move(next);
    if (m_scan && line.starts_with("summary ")) {
        m_files = static_cast<int>(measuredOf(m_drop.files).size());
    }
    return !m_possible.empty();
}

bool ReferenceModel::isQuiet() const {
    const auto hasNothingLeft = [this](const Positions& positions) {
        for (std::size_t i = 0; i < m_streams.size(); ++i) {
            if (!m_streams[i].isCancelled && positions[i] < m_streams[i].lines.size()) {
                return false;
            }
        }
        return true;
    };
    return std::ranges::any_of(m_possible, hasNothingLeft);
}

ReferenceModel::Stream ReferenceModel::scanOf(const Drop& drop) {
    const int total = static_cast<int>(drop.files.size());
    const int measured = static_cast<int>(measuredOf(drop.files).size());
    const int unreadable = total - measured + static_cast<int>(drop.skipped.size());
    const std::string summary = "summary " + std::to_string(measured) + "/" + std::to_string(unreadable) +
                                " " + std::to_string(drop.urls.size()) + " dropped '" + drop.source() + "'";
    if (total == 0) {
        return {.lines = {"found 0", summary, "phase empty", "status NO AUDIO FOUND"}};
    }
    Stream scan{.lines = {"found " + std::to_string(total), "status MEASURING"}};
    for (int done = 1; done <= total; ++done) {
        if (done % 4 == 0 || done == total) {
            scan.lines.push_back("processed " + std::to_string(done));
        }
    }
    scan.afterCount = scan.lines.size();
    scan.lines.push_back("processed " + std::to_string(total));
    scan.lines.push_back(summary);
    scan.lines.emplace_back(measured > 0 ? "phase done" : "phase empty");
    scan.lines.emplace_back(measured > 0 ? "status COMPLETE" : "status NO READABLE AUDIO");
    return scan;
}

/// How many lines `stream` has published once `line` is the next; 0 when it cannot be.
std::size_t ReferenceModel::afterLine(const Stream& stream, std::size_t position, const std::string& line) {
    if (position == stream.lines.size() || stream.lines[position] != line) {
        return 0;
    }
    if (!stream.isCancelled) {
        return position + 1;
    }
    const bool isStray = line.starts_with("processed ") && position < stream.afterCount;
    return isStray ? stream.lines.size() : 0;
}

void ReferenceModel::cancel() {
    if (m_scan) {
        m_streams[*m_scan].isCancelled = true;
        m_scan.reset();
    }
}

/// Adds a stream that has published nothing yet.
void ReferenceModel::add(Stream stream) {
    m_streams.push_back(std::move(stream));
    std::set<Positions> extended;
    for (Positions positions : m_possible) {
        positions.push_back(0);
        extended.insert(std::move(positions));
    }
    m_possible = std::move(extended);
}

} // namespace velmora::test
