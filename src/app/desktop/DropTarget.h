#pragma once

// Makes the whole window a place to drop files on.

#include "app/desktop/FileUrls.h"

#include <QObject>

class QWindow;

namespace velmora {

class DropTarget : public QObject {
    Q_OBJECT

public:
    /// Watches the drags over `window`, which becomes the parent.
    explicit DropTarget(QWindow* window);

signals:
    /// A drag that carries files has come over the window, or has left it.
    void hovered(bool hovering);

    /// Files were dropped: one signal for one drop, however many files, never an empty one.
    void dropped(const velmora::Paths& paths);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    bool m_carriesFiles = false; ///< what is dragged over the window; asked once, when it comes over it
};

} // namespace velmora
