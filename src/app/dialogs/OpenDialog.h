#pragma once

// A dialog in which folders and files can be chosen together. Desktops' own dialogs offer one or the other.

#include <QFileDialog>
#include <QStringList>

namespace velmora {

class OpenDialog : public QFileDialog {
    Q_OBJECT

public:
    OpenDialog();

    /// What was chosen when the dialog was confirmed: what was selected, or typed, or else the folder it
    /// showed.
    QStringList chosen() const { return m_chosen; }

protected:
    void accept() override;

private:
    QStringList selected() const;
    QStringList typed() const;
    void keepUsable();

    QStringList m_chosen;
};

} // namespace velmora
