// Names in the scripts of the world: what the window's typefaces lack comes from the fonts of the system.

#include "tests/ui/UiTest.h"
#include "ui/kit/PaintedText.h"

#include <QGlyphRun>
#include <QTextLayout>

#include <gtest/gtest.h>

namespace velmora::test {
namespace {

struct Name {
    const char* script;
    QString text;
};

std::ostream& operator<<(std::ostream& out, const Name& name) {
    return out << name.script;
}

class ScriptsTest : public UiTest, public testing::WithParamInterface<Name> {
protected:
    /// What a caption with that text looks like.
    QImage picture(const QString& text, bool monospaced) {
        show<PaintedText>("Caption", {{"text", text}, {"size", 24}, {"monospaced", monospaced}}, {90, 40});
        return grab();
    }
};

TEST_P(ScriptsTest, IsSetInAFontThatHasIt) {
    const QString noCharacter = QString::fromUcs4(U"\U000E0FFF"); // not assigned: shown as a box
    for (const bool monospaced : {false, true}) {
        QTextLayout layout(GetParam().text, TextStyle{.size = 24, .monospaced = monospaced}.font());
        layout.beginLayout();
        layout.createLine();
        layout.endLayout();
        for (const QGlyphRun& run : layout.glyphRuns()) {
            EXPECT_FALSE(run.glyphIndexes().contains(0)) << run.rawFont().familyName().toStdString();
        }
        EXPECT_NE(picture(GetParam().text, monospaced), picture(noCharacter, monospaced));
    }
}

INSTANTIATE_TEST_SUITE_P(Names, ScriptsTest,
                         testing::Values(Name{"Chinese", "歌"}, Name{"Japanese", "うた"},
                                         Name{"Korean", "노래"}, Name{"Arabic", "أغنية"},
                                         Name{"Devanagari", "गीत"},
                                         Name{"Emoji", QString::fromUcs4(U"\U0001F600")}),
                         [](const testing::TestParamInfo<Name>& name) { return name.param.script; });

} // namespace
} // namespace velmora::test
