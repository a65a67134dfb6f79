#include "tests/staged/PanelPages.h"

#include "ui/panel/FilePanel.h"

#include <vector>

namespace velmora::test {

namespace {

std::vector<Place> places() {
    return {{"Home", "PLACES", "/home/ann"},
            {"Music", "PLACES", "/home/ann/Music"},
            {"Downloads", "PLACES", "/home/ann/Downloads"},
            {"Projects", "BOOKMARKS", "/home/ann/Projects"},
            {"Recorder", "VOLUMES", "/media/ann/Recorder"},
            {"Harbour", "USED LAST", "/home/ann/Music/Harbour"}};
}

/// The file panel once its folder is read.
Page panel(const ScanState& state, const PanelRequest& request,
           const std::function<void(Stage& stage, FilePanel& panel)>& arrange = {}) {
    return {state, [=](Stage& stage) {
                FilePanel& shown = panelOf(*stage.window);
                shown.ask(request);
                const bool complete =
                    comesTrue([&] { return !shown.reading() && !shown.places().isEmpty(); });
                stage.complete = stage.complete && complete;
                if (arrange) {
                    arrange(stage, shown);
                }
            }};
}

} // namespace

std::map<std::string, Page> panelPages(const ScanState& result) {
    const PanelRequest opening = {.message = QStringLiteral("Choose a folder, archive, or audio files"),
                                  .prompt = QStringLiteral("Measure"),
                                  .folders = {"/home/ann/Music"},
                                  .places = &places};
    PanelRequest saving = opening;
    saving.message = QStringLiteral("Save a zip of the 214 audio files");
    saving.prompt = QStringLiteral("Zip");
    saving.name = "Field Recordings.zip";
    const auto select = [](Stage& /*stage*/, FilePanel& shown) {
        shown.files()->choose(1);
        shown.files()->extendTo(4);
    };
    const auto type = [](Stage& stage, FilePanel& shown) {
        stage.press(Qt::Key_Slash);
        for (const Qt::Key key : {Qt::Key_H, Qt::Key_Slash}) {
            stage.press(key);
        }
        const bool complete = comesTrue([&] { return !shown.proposals().isEmpty(); });
        stage.complete = stage.complete && complete;
    };
    return {
        {"panel-open", panel({}, opening)},
        {"panel-selected", panel({}, opening, select)},
        {"panel-typed", panel({}, opening, type)},
        {"panel-save", panel(result, saving)},
    };
}

} // namespace velmora::test
