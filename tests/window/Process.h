#pragma once

// Programs that run beside the test. Each ends with the object that represents it.

#include "tests/support/ComesTrue.h"

#include <QByteArray>
#include <QProcess>
#include <QProcessEnvironment>
#include <QStringList>

#include <filesystem>

namespace velmora::test {

/// A path that is UTF-8.
QString text(const std::filesystem::path& path);

/// A running program. The destructor asks it to end, and kills it if it does not end within some seconds.
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

    /// Waits for its end. Returns the exit status; -1 after a signal, or, as a test failure, when it does not
    /// end.
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
    qsizetype m_read = 0; ///< how many bytes `nextLine` has returned
};

/// Runs a program to its end and returns its output; an exit status other than 0 is a test failure.
QByteArray run(const QString& program, const QStringList& arguments, const QProcessEnvironment& environment);

} // namespace velmora::test
