#pragma once

// What the desktop learns of a scan: progress in the task bar, a notification at the end, no suspending while
// a zip archive is written.

#include "app/desktop/LauncherProgress.h"
#include "app/desktop/Notifier.h"
#include "app/desktop/SuspendInhibitor.h"

#include <QByteArray>
#include <QObject>

#include <chrono>
#include <functional>
#include <optional>

class QWindow;

namespace velmora {

class ScanModel;
class ScanView;

/// The user is notified of the end of a scan that took longer than `longScan`, and of a zip archive, while
/// the window is not in front. The notification is taken back when the window comes to the front, when the
/// next scan starts, on reset and by the destructor. Main thread.
class ScanNews : public QObject {
    Q_OBJECT

public:
    using Clock = std::function<std::chrono::steady_clock::time_point()>;

    static constexpr std::chrono::seconds longScan{10};

    /// `view` shows `model`; both outlive this.
    ScanNews(const ScanModel& model, const ScanView& view, Clock now = &std::chrono::steady_clock::now);

    /// The window that the user may not see. Until it is set, nobody is notified.
    void setWindow(QWindow* window);

signals:
    /// The user pressed a notification, to see the window. `activationToken`: see `Notifier`.
    void windowWanted(const QByteArray& activationToken);

    /// The user wants to see the zip archive that the notification tells of.
    void zipWanted(const QByteArray& activationToken);

private:
    void followPhase();
    void followZip();
    void showProgress();
    void tell(const Notice& notice);
    std::optional<double> progress() const;

    const ScanModel& m_model;
    const ScanView& m_view;
    Clock m_now;
    std::chrono::steady_clock::time_point m_scanStarted;
    int m_zipFiles = 0; ///< in the archive that is being written, or was last
    QWindow* m_window = nullptr;
    LauncherProgress m_progress;
    Notifier m_notifier;
    SuspendInhibitor m_inhibitor;
};

} // namespace velmora
