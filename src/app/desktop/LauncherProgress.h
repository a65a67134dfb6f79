#pragma once

// A progress bar on the program's entry in the task bar or dock.

#include <QObject>
#include <QTimer>

#include <optional>

namespace velmora {

/// Tells the session bus in signals, com.canonical.Unity.LauncherEntry: whoever shows launchers may listen,
/// as the docks of GNOME, Plasma and others do. One signal in a tenth of a second at most. Main thread.
class LauncherProgress : public QObject {
    Q_OBJECT

public:
    explicit LauncherProgress(QObject* parent = nullptr);

    /// Takes the bar away.
    ~LauncherProgress() override;

    /// Shows `progress`, from 0 to 1; absent: no bar.
    void show(std::optional<double> progress);

private:
    void send();

    std::optional<double> m_progress;
    std::optional<double> m_sent;
    QTimer m_pause; ///< runs while nothing more may be sent
};

} // namespace velmora
