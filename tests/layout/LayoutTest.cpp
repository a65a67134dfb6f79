#include "layout/SourceRules.h"
#include "support/Files.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>

namespace velmora::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

const fs::path project = VELMORA_SOURCE_DIR;

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

    EXPECT_THAT(wrong, IsEmpty());
    EXPECT_GT(files, 30) << "the sources were not found";
}

TEST(Layout, NoSourceFileIsLongerThanCanBeReadAtOnce) {
    for (const std::string folder : {"src", "tests", "bench"}) {
        forEachSource(folder, [&folder](const fs::path& relative, const std::string& text) {
            EXPECT_LE(lineCount(text), mostLines) << folder / relative;
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
        ArrowCase{"DownToRecords", "measure/MeasurementPipeline.h", "#include \"core/Records.h\"", true},
        ArrowCase{"ModelToGather", "core/ScanModel.cpp", "#include \"gather/Gathering.h\"", true},
        ArrowCase{"ExportToTemporaryFolders", "export/Zipper.cpp", "#include \"gather/TempRegistry.h\"",
                  true},
        ArrowCase{"ExportToWalker", "export/Zipper.cpp", "#include \"gather/SourceWalker.h\"", false},
        ArrowCase{"GatherToMeasure", "gather/Gathering.cpp", "#include \"measure/OggDuration.h\"", false},
        ArrowCase{"MeasureToGather", "measure/OggDuration.cpp", "#include \"gather/ToolRunner.h\"", false},
        ArrowCase{"RecordsToModel", "core/Records.h", "#include \"core/ScanModel.h\"", false},
        ArrowCase{"MeasureToModel", "measure/OggDuration.cpp", "#include \"core/ScanModel.h\"", false},
        ArrowCase{"SystemToRecords", "system/FileName.cpp", "#include \"core/Records.h\"", false},
        ArrowCase{"CommandLineToModel", "cli/Main.cpp", "#include \"core/ScanModel.h\"", true},
        ArrowCase{"CommandLineToMeasure", "cli/Main.cpp", "#include \"measure/OggDuration.h\"", false},
        ArrowCase{"ViewsToPictures", "ui/Views.cpp", "#include \"screenshots/Screenshots.h\"", false},
        ArrowCase{"WindowToPictures", "ui/main.cpp", "#include \"screenshots/Screenshots.h\"", true},
        ArrowCase{"UndrawnFolder", "extras/Toy.cpp", "#include <vector>", false},
        ArrowCase{"SourceFile", "core/ScanModel.cpp", "#include \"core/Summary.cpp\"", false},
        ArrowCase{"WithoutFolder", "core/ScanModel.cpp", "#include \"Summary.h\"", false},
        ArrowCase{"GeneratedByQt", "core/ScanModel.cpp", "#include \"ScanModel.moc\"", true},
        ArrowCase{"QtInModel", "core/ScanModel.h", "#include <QObject>", true},
        ArrowCase{"QtInRecords", "core/Records.h", "#include <QObject>", false},
        ArrowCase{"QtInGather", "gather/Gathering.cpp", "#include <QString>", false},
        ArrowCase{"QtByItsFolder", "export/Zipper.cpp", "  #  include <QtCore/qstring.h>", false},
        ArrowCase{"QtInLowerCase", "system/Uuid.cpp", "#include <quuid.h>", false},
        ArrowCase{"QtGuiInModel", "core/ScanModel.h", "#include <QImage>", false},
        ArrowCase{"QtGuiInCommandLine", "cli/Main.cpp", "#include <QGuiApplication>", false},
        ArrowCase{"QtGuiInWindow", "ui/Neon.cpp", "#include <QPainter>", true}),
    [](const testing::TestParamInfo<ArrowCase>& row) { return row.param.name; });

TEST(SourceRules, ReadsIncludeLinesAndNothingElse) {
    EXPECT_THAT(includesOf("#pragma once\n"
                           "#include <map>\n"
                           "\t# include \"core/Records.h\" // not <set>\n"
                           "// #include <set>\n"
                           "#define include <list>\n"
                           "int include = 1 < 2;\n"
                           "#include <deque>"),
                ElementsAre(Include{"map", false}, Include{"core/Records.h", true}, Include{"deque", false}));
}

TEST(SourceRules, NamesTheFileAndTheWrongHeader) {
    EXPECT_THAT(
        wrongIncludes("measure/OggDuration.cpp", "#include <map>\n#include \"gather/ToolRunner.h\"\n"),
        ElementsAre("measure/OggDuration.cpp: measure must not include gather/ToolRunner.h"));
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
