#include "app/desktop/CompositorLoss.h"

#include "system/ForcedEnd.h"

#include <QString>
#include <QtGlobal>

#include <cstdlib>

namespace velmora {

namespace {

QtMessageHandler earlierHandler = nullptr;

/// Qt's plug-in for Wayland warns "The Wayland connection broke. …" or "The Wayland connection experienced a
/// fatal error: …" and calls _exit.
void endAfterTheWarning(QtMsgType type, const QMessageLogContext& context, const QString& text) {
    earlierHandler(type, context, text);
    if (text.startsWith(QLatin1String("The Wayland connection "))) {
        endNow(EXIT_FAILURE);
    }
}

} // namespace

void endInOrderWithoutCompositor() {
    earlierHandler = qInstallMessageHandler(&endAfterTheWarning);
}

} // namespace velmora
