#include "screenshots/Screenshots.h"

#include "ui/Views.h"
#include "ui/content/Actions.h"

#include <QBuffer>
#include <QByteArray>
#include <QDir>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickRenderControl>
#include <QQuickRenderTarget>
#include <QQuickWindow>
#include <QTemporaryFile>
#include <QVariant>

#include <sys/mman.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <fstream>
#include <memory>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>

namespace velmora::Screenshots {

namespace {

constexpr QSize shotSize(1440, 900);
constexpr double shotScale = 2;

/// From 0 to 100: a higher value compresses faster and less. The pictures are lossless at any value.
constexpr int pngQuality = 75;

/// A picture's controls do nothing.
class NoActions : public Actions {
public:
    void choose() override {}

    void copyRuntime() override {}

    void copyFileList() override {}

    void zip() override {}

    void reset() override {}

    void revealZip() override {}

    void copyText(const QByteArray& /*text*/) override {}

    void reveal(const QByteArray& /*path*/) override {}

    void checkForUpdates() override {}

    void about() override {}

    void quit() override {}
};

ScanState resultState() {
    return {
        .phase = ScanModel::Phase::done,
        .status = "COMPLETE",
        .processed = 14,
        .found = 14,
        .progress = 1,
        .source = "MIDNIGHT SESSIONS",
        .seconds = 5832.4,
        .fileCount = 14,
        .bytes = 1'287'000'000,
    };
}

ScanState scanningState() {
    return {
        .phase = ScanModel::Phase::scanning,
        .status = "MEASURING",
        .processed = 31,
        .found = 48,
        .progress = 31.0 / 48,
        .source = "LIVE SET 2026",
    };
}

void write(const QImage& image, const std::filesystem::path& path) {
    QByteArray bytes;
    QBuffer buffer(&bytes);
    if (image.save(&buffer, "PNG", pngQuality)) {
        std::ofstream(path, std::ios::binary | std::ios::trunc).write(bytes.constData(), bytes.size());
    }
}

/// Makes fontconfig read a configuration without fonts and rules: the typefaces are embedded, and the
/// desktop's settings for drawing them must not change the pictures.
void keepFontSettingsOut() {
    static QTemporaryFile nothing(QDir::tempPath() + QStringLiteral("/velmora-XXXXXX.conf")); // until the end
    if (nothing.open() &&
        nothing.write("<fontconfig><dir>/dev/null</dir><cachedir>/dev/null</cachedir></fontconfig>") > 0 &&
        nothing.flush()) {
        ::setenv("FONTCONFIG_FILE", qPrintable(nothing.fileName()), 1);
    }
}

} // namespace

void prepareEnvironment() {
    for (const char* name :
         {"QT_SCALE_FACTOR", "QT_SCREEN_SCALE_FACTORS", "QT_ENABLE_HIGHDPI_SCALING",
          "QT_AUTO_SCREEN_SCALE_FACTOR", "QT_SCALE_FACTOR_ROUNDING_POLICY", "QT_USE_PHYSICAL_DPI",
          "QT_FONT_DPI", "QT_QPA_PLATFORMTHEME", "QT_STYLE_OVERRIDE", "QT_QUICK_CONTROLS_STYLE",
          "QT_QPA_OFFSCREEN_NO_GLX", "QSG_RENDER_LOOP", "QSG_RHI_BACKEND", "QML_DISABLE_DISTANCEFIELD",
          "QT_PLUGIN_PATH", "QML_IMPORT_PATH", "QML2_IMPORT_PATH"}) {
        ::unsetenv(name);
    }
    keepFontSettingsOut();
    ::setenv("QT_QPA_PLATFORM", "offscreen", 1);
    ::setenv("QT_QUICK_BACKEND", "software", 1);
}

void render(const std::filesystem::path& into) {
    std::error_code ignored;
    std::filesystem::create_directories(into, ignored);
    const std::array<std::pair<const char*, ScanState>, 3> shots = {{
        {"1-result.png", resultState()},
        {"2-drop.png", ScanState()},
        {"3-scanning.png", scanningState()},
    }};
    for (const auto& [name, state] : shots) {
        ScanView scan;
        scan.show(state);
        const QImage image = picture(scan, shotSize, shotScale);
        if (!image.isNull()) {
            write(image, into / name);
        }
    }
}

QImage picture(ScanView& scan, const QSize& points, double scale) {
    NoActions actions;

    QQmlEngine engine;
    QQmlComponent component(&engine, Views::url("ContentView"));
    const std::unique_ptr<QObject> view(component.createWithInitialProperties({
        {"scan", QVariant::fromValue(&scan)},
        {"actions", QVariant::fromValue<Actions*>(&actions)},
        {"time", shotTime},
        {"animated", false},
    }));
    auto* const content = qobject_cast<QQuickItem*>(view.get());
    if (content == nullptr) {
        return {};
    }

    QQuickRenderControl control;
    QQuickWindow window(&control);
    window.setColor(Qt::black);
    window.setGeometry(QRect({}, points));
    content->setParentItem(window.contentItem());
    content->setSize(points);

    QImage image((QSizeF(points) * scale).toSize(), QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(scale);
    image.fill(Qt::black);
    // The target tells the items the scale they are painted at, the image tells the renderer.
    QQuickRenderTarget target = QQuickRenderTarget::fromPaintDevice(&image);
    target.setDevicePixelRatio(scale);
    window.setRenderTarget(target);
    control.polishItems();
    control.beginFrame();
    control.sync();
    control.render();
    control.endFrame();
    return image.convertToFormat(QImage::Format_RGBA8888);
}

} // namespace velmora::Screenshots
