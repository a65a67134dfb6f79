#include "app/desktop/GraphicsProbe.h"

#include "system/ChildProcess.h"
#include "system/RegularFile.h"

#include <QGuiApplication>
#include <QOffscreenSurface>
#include <QOpenGLContext>
#include <QOpenGLFunctions>

#include <sys/mman.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <string>
#include <system_error>

namespace velmora {

namespace {

namespace fs = std::filesystem;

constexpr std::chrono::seconds probeTime{3};

bool hasRenderDevice() {
    std::error_code error;
    for (fs::directory_iterator entry("/dev/dri", error), end; !error && entry != end;
         entry.increment(error)) {
        if (entry->path().filename().native().starts_with("renderD")) {
            return true;
        }
    }
    return false;
}

/// The name of the OpenGL renderer; empty when there is none.
std::string rendererName() {
    const FileDescriptor output(::memfd_create("renderer", MFD_CLOEXEC));
    const auto status =
        runChild("/proc/self/exe", {probeArgument}, output.get(), {.stop = {}, .deadline = probeTime});
    std::array<char, 256> name{};
    const ssize_t length = status == 0 ? ::pread(output.get(), name.data(), name.size(), 0) : 0;
    return {name.data(), static_cast<std::size_t>(length > 0 ? length : 0)};
}

bool drawsInSoftware(const std::string& renderer) {
    return renderer.find("llvmpipe") != std::string::npos || renderer.find("softpipe") != std::string::npos ||
           renderer.find("swrast") != std::string::npos;
}

} // namespace

bool isBetterInSoftware() {
    if (!hasRenderDevice()) {
        return true;
    }
    const std::string renderer = rendererName();
    return renderer.empty() || drawsInSoftware(renderer);
}

int probeGraphics(int argc, char** argv) {
    const QGuiApplication application(argc, argv);
    QOffscreenSurface surface;
    surface.create();
    QOpenGLContext context;
    if (!context.create() || !context.makeCurrent(&surface)) {
        return 1;
    }
    const GLubyte* name = context.functions()->glGetString(GL_RENDERER);
    return name != nullptr && std::puts(reinterpret_cast<const char*>(name)) >= 0 ? 0 : 1;
}

} // namespace velmora
