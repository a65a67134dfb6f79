#pragma once

// Actions that do nothing but write down what they are asked to do.

#include "ui/content/Actions.h"

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

    void checkForUpdates() override { asked << "checkForUpdates"; }

    void about() override { asked << "about"; }

    void quit() override { asked << "quit"; }

    QStringList asked;
};

} // namespace velmora::test
