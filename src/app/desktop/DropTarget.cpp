#include "app/desktop/DropTarget.h"

#include "app/desktop/DroppedFiles.h"

#include <QDropEvent>
#include <QMimeData>
#include <QWindow>

namespace velmora {

namespace {

/// Takes what is dragged as a copy, whatever else its source would allow: it stays where it is.
void accept(QDropEvent& event) {
    event.setDropAction(Qt::CopyAction);
    event.accept();
}

} // namespace

DropTarget::DropTarget(QWindow* window)
    : QObject(window) {
    window->installEventFilter(this);
}

bool DropTarget::eventFilter(QObject* watched, QEvent* event) {
    switch (event->type()) {
    case QEvent::DragEnter:
        m_carriesFiles = carriesFiles(*static_cast<QDropEvent&>(*event).mimeData());
        emit hovered(m_carriesFiles);
        [[fallthrough]];
    case QEvent::DragMove: {
        auto& drag = static_cast<QDropEvent&>(*event);
        m_carriesFiles ? accept(drag) : drag.ignore();
        return true;
    }
    case QEvent::DragLeave:
        emit hovered(false);
        return true;
    case QEvent::Drop: {
        auto& drop = static_cast<QDropEvent&>(*event);
        accept(drop);
        emit hovered(false);
        if (const Paths paths = droppedFiles(*drop.mimeData()); !paths.empty()) {
            emit dropped(paths);
        }
        return true;
    }
    default:
        return QObject::eventFilter(watched, event);
    }
}

} // namespace velmora
