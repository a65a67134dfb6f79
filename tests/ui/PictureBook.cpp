// Writes a picture of every state of the window's content, for people to look at:
//   velmora_picture_book DIRECTORY [WIDTH HEIGHT [SCALE]]

#include "screenshots/Screenshots.h"
#include "ui/ScanView.h"
#include "ui/Views.h"

#include <QGuiApplication>

#include <cstdlib>
#include <filesystem>
#include <map>
#include <string>

namespace velmora {
namespace {

const ScanState result = {
    .phase = ScanModel::Phase::done,
    .status = "COMPLETE",
    .processed = 212,
    .found = 214,
    .progress = 1,
    .source = "FIELD RECORDINGS",
    .seconds = 363'725.4,
    .fileCount = 212,
    .bytes = 48'200'000'000,
    .unreadable = 2,
};

ScanState resultWithZip(const ZipState& zip) {
    ScanState state = result;
    state.zip = zip;
    return state;
}

const std::map<std::string, ScanState> pages = {
    {"idle", {}},
    {"reading", {.phase = ScanModel::Phase::scanning, .status = "READING SOURCE", .source = "3 ITEMS"}},
    {"scanning",
     {.phase = ScanModel::Phase::scanning,
      .status = "MEASURING",
      .processed = 148,
      .found = 214,
      .progress = 148.0 / 214,
      .source = "FIELD RECORDINGS"}},
    {"done", result},
    {"zipping", resultWithZip(ZipWorking{96, 212})},
    {"saved", resultWithZip(ZipDone{"/music/Field Recordings.zip"})},
    {"failed", resultWithZip(ZipFailed{"The archive could not be written."})},
    {"empty", {.phase = ScanModel::Phase::empty, .status = "NO READABLE AUDIO", .source = "NOTES"}},
};

int write(const std::filesystem::path& directory, const QSize& points, double scale) {
    std::filesystem::create_directories(directory);
    bool written = true;
    const auto save = [&](ScanView& scan, const std::string& name) {
        const std::string path = directory / (name + ".png");
        written = Screenshots::picture(scan, points, scale).save(QString::fromStdString(path)) && written;
    };
    for (const auto& [name, state] : pages) {
        ScanView scan;
        scan.show(state);
        save(scan, name);
    }
    ScanView scan;
    scan.setTargeted(true);
    save(scan, "targeted");
    return written ? 0 : 1;
}

} // namespace
} // namespace velmora

int main(int argc, char** argv) {
    if (argc != 2 && argc != 4 && argc != 5) {
        return 2;
    }
    velmora::Screenshots::prepareEnvironment();
    const QGuiApplication application(argc, argv);
    velmora::Views::prepare();
    const QSize points = argc >= 4 ? QSize(std::atoi(argv[2]), std::atoi(argv[3])) : QSize(940, 700);
    return velmora::write(argv[1], points, argc == 5 ? std::atof(argv[4]) : 1);
}
