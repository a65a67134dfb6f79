#pragma once

// What the window's controls ask of the program. The views call these, and know nothing of the
// panels, the clipboard, the files and the network that do the work.

#include <QByteArray>
#include <QObject>
#include <QtQml/qqmlregistration.h>

namespace velmora {

/// Called on the main thread; every operation returns at once.
class Actions : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("The program provides its actions.")

public:
    using QObject::QObject;

public slots:
    virtual void choose() = 0;                         ///< asks which, then a scan of what was chosen
    virtual void copyRuntime() = 0;                    ///< the total to the clipboard, with its flash
    virtual void copyFileList() = 0;                   ///< the names to the clipboard, with its flash
    virtual void zip() = 0;                            ///< asks where, then the packing
    virtual void reset() = 0;                          ///< back to the start
    virtual void revealZip() = 0;                      ///< shows the saved archive in the file manager
    virtual void copyText(const QByteArray& text) = 0; ///< these bytes to the clipboard, usually UTF-8
    virtual void reveal(const QByteArray& path) = 0; ///< shows what is there in the file manager; "": nothing
    virtual void checkForUpdates() = 0;              ///< asks for a newer version and tells the answer
    virtual void about() = 0;
    virtual void quit() = 0;
};

} // namespace velmora
