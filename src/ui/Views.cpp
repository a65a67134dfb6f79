#include "ui/Views.h"

#include "ui/kit/SpokenItem.h"
#include "ui/kit/TextStyle.h"

#include <QQmlExtensionPlugin>
#include <QString>

Q_IMPORT_QML_PLUGIN(VelmoraPlugin)

namespace velmora::Views {

void prepare() {
    loadTypefaces();
    installSpokenItems();
}

QUrl url(const char* name) {
    return {QStringLiteral("qrc:/qt-project.org/imports/Velmora/%1.qml").arg(QLatin1String(name))};
}

} // namespace velmora::Views
