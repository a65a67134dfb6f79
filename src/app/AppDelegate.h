#pragma once

// Takes the files that the desktop or the command line hands to the program, before its window exists and
// after.

#include "app/desktop/FileUrls.h"

#include <QObject>

#include <utility>

namespace velmora {

class AppDelegate : public QObject {
    Q_OBJECT

public:
    using QObject::QObject;

    /// Keeps `paths` for the window, in place of those kept before, and announces them.
    void open(const Paths& paths) {
        m_pending = paths;
        emit openURLs(paths);
    }

    /// Returns the paths kept for the window, which are no longer kept.
    Paths takePending() { return std::exchange(m_pending, {}); }

signals:
    void openURLs(const velmora::Paths& paths);

private:
    Paths m_pending;
};

} // namespace velmora
