#pragma once

// Programs beside the test, each ended with the object that stands for it.

#include <QByteArray>
#include <QProcess>
#include <QProcessEnvironment>
#include <QStringList>

#include <filesystem>
#include <functional>

namespace velmora::test {

/// A path that is UTF-8.
QString text(const std::filesystem::path& path);

/// Whether `condition` came to hold; looked at again and again for a minute, events being processed
/// meanwhile.
bool comesTrue(const std::function<bool()>& condition);

/// A running program. Asked to end when this goes, and killed if it does not within some seconds.
class Process {
public:
    /// A program that cannot be started is a test failure.
    Process(const QString& program, const QStringList& arguments, const QProcessEnvironment& environment);
    Process(const Process&) = delete;
    Process& operator=(const Process&) = delete;
    ~Process();

    qint64 id() const { return m_process.processId(); }

    void send(int signal) const;

    bool ended() const { return m_process.state() == QProcess::NotRunning; }

    /// Waits for its end. The exit status; -1 after a signal, or, as a test failure, when it does not end.
    int wait();

    /// All it wrote to standard output so far.
    const QByteArray& output();

    /// All it wrote to standard error since last asked.
    QByteArray errors() { return m_process.readAllStandardError(); }

    /// The next line of its output, without line feed, once it is there.
    QByteArray nextLine();

private:
    QProcess m_process;
    QByteArray m_output;
    qsizetype m_read = 0; ///< how far `nextLine` has come
};

/// Runs a program to its end and returns its output; an exit status other than 0 is a test failure.
QByteArray run(const QString& program, const QStringList& arguments, const QProcessEnvironment& environment);

} // namespace velmora::test
