#pragma once

// Actions that do nothing but write down what they are asked to do.

#include "ui/content/Actions.h"

#include <QByteArrayList>
#include <QStringList>

namespace velmora::test {

class RecordingActions : public Actions {
public:
    void choose() override { asked << "choose"; }

    void copyRuntime() override { asked << "copyRuntime"; }

    void copyFileList() override { asked << "copyFileList"; }

    void zip() override { asked << "zip"; }

    void reset() override { asked << "reset"; }

    void revealZip() override { asked << "revealZip"; }

    void copyText(const QByteArray& text) override { copied = text; }

    void reveal(const QByteArray& path) override { revealed << path; }

    void checkForUpdates() override { asked << "checkForUpdates"; }

    void about() override { asked << "about"; }

    void quit() override { asked << "quit"; }

    QStringList asked;
    QByteArray copied;
    QByteArrayList revealed;
};

} // namespace velmora::test
