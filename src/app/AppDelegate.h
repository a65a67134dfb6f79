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

    /// Keeps `urls` for the window in place of what waited there, and announces them.
    void open(const Paths& urls) {
        m_pending = urls;
        emit openURLs(urls);
    }

    /// What waits for the window; nothing waits afterwards.
    Paths takePending() { return std::exchange(m_pending, {}); }

signals:
    void openURLs(const velmora::Paths& urls);

private:
    Paths m_pending;
};

} // namespace velmora
