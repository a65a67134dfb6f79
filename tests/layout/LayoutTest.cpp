#include "tests/layout/SourceRules.h"
#include "tests/support/Files.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <iterator>
#include <map>

namespace velmora::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

void forEachSource(const std::string& folder,
                   const std::function<void(const fs::path& relative, const std::string& text)>& visit) {
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(project / folder)) {
        const std::string extension = entry.path().extension();
        if (extension == ".h" || extension == ".cpp") {
            visit(entry.path().lexically_relative(project / folder), read(entry.path()));
        }
    }
}

TEST(Layout, EveryArrowBetweenFoldersIsDrawn) {
    std::vector<std::string> wrong;
    int files = 0;
    forEachSource("src", [&](const fs::path& relative, const std::string& text) {
        ++files;
        for (const std::string& sentence : wrongIncludes(relative, text)) {
            wrong.push_back(sentence);
        }
    });

    forEachSource("tools", [&](const fs::path& relative, const std::string& text) {
        std::ranges::move(wrongIncludes("tools" / relative, text), std::back_inserter(wrong));
    });

    EXPECT_THAT(wrong, IsEmpty());
    EXPECT_GT(files, 30) << "the sources were not found";
}

TEST(Layout, EveryArrowBetweenViewsIsDrawn) {
    TypeFolders folders;
    std::map<fs::path, std::string> views;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(project / "src")) {
        const fs::path relative = entry.path().lexically_relative(project / "src");
        const std::string extension = relative.extension();
        if (extension == ".qml") {
            views[relative] = read(entry.path());
        }
        if (extension == ".qml" || (extension == ".h" && relative.native().starts_with("ui/"))) {
            folders[relative.stem()] = relative.parent_path();
        }
    }

    std::vector<std::string> wrong;
    for (const auto& [path, qml] : views) {
        std::ranges::move(wrongTypes(path, qml, folders), std::back_inserter(wrong));
    }
    EXPECT_THAT(wrong, IsEmpty());
    EXPECT_GT(views.size(), 20) << "the views were not found";
}

TEST(Layout, NoSourceFileIsLongerThanCanBeReadAtOnce) {
    for (const std::string folder : {"src", "tests", "tools", "bench", "fuzz"}) {
        forEachSource(folder, [&folder](const fs::path& relative, const std::string& text) {
            EXPECT_LE(lineCount(text), maxLines) << folder / relative;
        });
    }
}

TEST(Layout, NoTestIncludesASourceFile) {
    forEachSource("tests", [](const fs::path& relative, const std::string& text) {
        for (const Include& include : includesOf(text)) {
            EXPECT_FALSE(include.name.ends_with(".cpp")) << relative << " includes " << include.name;
        }
    });
}

struct ArrowCase {
    std::string name;
    std::string path;
    std::string line;
    bool allowed;
};

class Arrow : public testing::TestWithParam<ArrowCase> {};

TEST_P(Arrow, IsJudgedByTheTable) {
    const ArrowCase& row = GetParam();
    EXPECT_EQ(wrongIncludes(row.path, row.line + "\n").empty(), row.allowed);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, Arrow,
    testing::Values(
        ArrowCase{"WithinAFolder", "gather/ScanOrder.cpp", "#include \"gather/ScanOrder.h\"", true},
        ArrowCase{"DownToSystem", "gather/ToolRunner.cpp", "#include \"system/ChildProcess.h\"", true},
        ArrowCase{"DownToRecords", "measure/MeasurementPipeline.h", "#include \"records/Records.h\"", true},
        ArrowCase{"ModelToGather", "scan/ScanModel.cpp", "#include \"gather/Gathering.h\"", true},
        ArrowCase{"ExportToTemporaryFolders", "export/Zipper.cpp", "#include \"system/TempRegistry.h\"",
                  true},
        ArrowCase{"ExportToWalker", "export/Zipper.cpp", "#include \"gather/SourceWalker.h\"", false},
        ArrowCase{"GatherToMeasure", "gather/Gathering.cpp", "#include \"measure/formats/OggDuration.h\"",
                  false},
        ArrowCase{"MeasureToGather", "measure/formats/OggDuration.cpp", "#include \"gather/ToolRunner.h\"",
                  false},
        ArrowCase{"RecordsToModel", "records/Records.h", "#include \"scan/ScanModel.h\"", false},
        ArrowCase{"MeasureToModel", "measure/formats/OggDuration.cpp", "#include \"scan/ScanModel.h\"",
                  false},
        ArrowCase{"SystemToRecords", "system/FileName.cpp", "#include \"records/Records.h\"", false},
        ArrowCase{"CommandLineToModel", "cli/Main.cpp", "#include \"scan/ScanModel.h\"", true},
        ArrowCase{"CommandLineToMeasure", "cli/Main.cpp", "#include \"measure/formats/OggDuration.h\"",
                  false},
        ArrowCase{"ToolsToReaders", "tools/Explain.cpp", "#include \"measure/formats/OggDuration.h\"", false},
        ArrowCase{"ViewsToPictures", "ui/Views.cpp", "#include \"screenshots/Screenshots.h\"", false},
        ArrowCase{"WindowToPictures", "app/main.cpp", "#include \"screenshots/Screenshots.h\"", true},
        ArrowCase{"FormatsToBytes", "measure/formats/WavDuration.cpp",
                  "#include \"measure/bytes/ByteOrder.h\"", true},
        ArrowCase{"BytesToFormats", "measure/bytes/GuardedReader.cpp",
                  "#include \"measure/formats/WavDuration.h\"", false},
        ArrowCase{"FramesToLibav", "measure/frames/FrameHopper.cpp", "#include \"measure/libav/Libav.h\"",
                  false},
        ArrowCase{"FormatsToDispatch", "measure/formats/WavDuration.cpp",
                  "#include \"measure/MediaDuration.h\"", false},
        ArrowCase{"ContentToKit", "ui/content/Card.cpp", "#include \"ui/kit/Neon.h\"", true},
        ArrowCase{"KitToContent", "ui/kit/Neon.cpp", "#include \"ui/content/Card.h\"", false},
        ArrowCase{"SceneryToModel", "ui/scenery/WaveField.cpp", "#include \"scan/ScanModel.h\"", false},
        ArrowCase{"DesktopToViews", "app/desktop/DropTarget.cpp", "#include \"ui/Views.h\"", false},
        ArrowCase{"UndrawnFolder", "extras/Toy.cpp", "#include <vector>", false},
        ArrowCase{"SourceFile", "scan/ScanModel.cpp", "#include \"scan/Summary.cpp\"", false},
        ArrowCase{"WithoutFolder", "scan/ScanModel.cpp", "#include \"Summary.h\"", false},
        ArrowCase{"GeneratedByQt", "scan/ScanModel.cpp", "#include \"ScanModel.moc\"", true},
        ArrowCase{"QtInModel", "scan/ScanModel.h", "#include <QObject>", true},
        ArrowCase{"QtInRecords", "records/Records.h", "#include <QObject>", false},
        ArrowCase{"QtInGather", "gather/Gathering.cpp", "#include <QString>", false},
        ArrowCase{"QtByItsFolder", "export/Zipper.cpp", "  #  include <QtCore/qstring.h>", false},
        ArrowCase{"QtInLowerCase", "system/Uuid.cpp", "#include <quuid.h>", false},
        ArrowCase{"QtGuiInModel", "scan/ScanModel.h", "#include <QImage>", false},
        ArrowCase{"QtGuiInCommandLine", "cli/Main.cpp", "#include <QGuiApplication>", false},
        ArrowCase{"QtGuiInWindow", "ui/kit/Neon.cpp", "#include <QPainter>", true}),
    [](const testing::TestParamInfo<ArrowCase>& row) { return row.param.name; });

TEST(SourceRules, ReadsIncludeLinesAndNothingElse) {
    EXPECT_THAT(
        includesOf("#pragma once\n"
                   "#include <map>\n"
                   "\t# include \"records/Records.h\" // not <set>\n"
                   "// #include <set>\n"
                   "#define include <list>\n"
                   "int include = 1 < 2;\n"
                   "#include <deque>"),
        ElementsAre(Include{"map", false}, Include{"records/Records.h", true}, Include{"deque", false}));
}

TEST(SourceRules, NamesTheFileAndTheWrongHeader) {
    EXPECT_THAT(
        wrongIncludes("measure/formats/OggDuration.cpp",
                      "#include <map>\n#include \"gather/ToolRunner.h\"\n"),
        ElementsAre("measure/formats/OggDuration.cpp: measure/formats must not include gather/ToolRunner.h"));
}

TEST(SourceRules, ReadsTheTypesOfAView) {
    EXPECT_THAT(usedTypes("import QtQuick\n"
                          "Item {\n"
                          "    NeonButton { text: \"Item {\" }\n"
                          "    delegate: MenuRow {\n"
                          "    }\n"
                          "    // Rectangle {\n"
                          "}\n"),
                ElementsAre("Item", "NeonButton", "MenuRow"));
}

TEST(SourceRules, NamesTheViewAndTheWrongType) {
    const TypeFolders folders = {{"NeonButton", "ui/kit"}, {"Footer", "ui/content"}};
    EXPECT_THAT(wrongTypes("ui/content/Footer.qml", "Item {\n NeonButton {}\n}\n", folders), IsEmpty());
    EXPECT_THAT(wrongTypes("ui/kit/NeonButton.qml", "Item {\n Footer {}\n}\n", folders),
                ElementsAre("ui/kit/NeonButton.qml: ui/kit must not show Footer of ui/content"));
}

TEST(SourceRules, KnowsWhichQtModuleAHeaderBelongsTo) {
    EXPECT_EQ(qtModule("QObject"), "QtCore");
    EXPECT_EQ(qtModule("qobject.h"), "QtCore");
    EXPECT_EQ(qtModule("QtGui/QImage"), "QtGui");
    EXPECT_EQ(qtModule("QApplication"), "QtWidgets");
    EXPECT_EQ(qtModule("QNeverHeardOf"), "unknown");
    EXPECT_EQ(qtModule("vector"), "");
    EXPECT_EQ(qtModule("sys/stat.h"), "");
}

TEST(SourceRules, CountsALastLineWithoutLineFeed) {
    EXPECT_EQ(lineCount(""), 0);
    EXPECT_EQ(lineCount("a\n"), 1);
    EXPECT_EQ(lineCount("a\nb"), 2);
}

} // namespace
} // namespace velmora::test
