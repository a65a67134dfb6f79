#include "tests/window/Process.h"

#include <gtest/gtest.h>
#include <sys/prctl.h>

#include <csignal>

namespace velmora::test {

namespace {

constexpr int politePatience = 5'000; // milliseconds a program gets to end by itself

} // namespace

QString text(const std::filesystem::path& path) {
    return QString::fromStdString(path.native());
}

Process::Process(const QString& program, const QStringList& arguments,
                 const QProcessEnvironment& environment) {
    m_process.setProcessEnvironment(environment);
    m_process.setChildProcessModifier([] { ::prctl(PR_SET_PDEATHSIG, SIGTERM); }); // when the test is killed
    m_process.start(program, arguments);
    EXPECT_TRUE(m_process.waitForStarted(patience)) << program.toStdString() << " cannot be started";
}

Process::~Process() {
    m_process.terminate();
    if (!ended() && !m_process.waitForFinished(politePatience)) {
        m_process.kill();
        m_process.waitForFinished(patience);
    }
}

void Process::send(int signal) const {
    EXPECT_EQ(::kill(static_cast<pid_t>(id()), signal), 0);
}

int Process::wait() {
    if (!comesTrue([this] { return ended(); })) {
        ADD_FAILURE() << m_process.program().toStdString() << " does not end";
        return -1;
    }
    return m_process.exitStatus() == QProcess::NormalExit ? m_process.exitCode() : -1;
}

const QByteArray& Process::output() {
    m_output += m_process.readAllStandardOutput();
    return m_output;
}

QByteArray Process::nextLine() {
    const auto end = [this] { return output().indexOf('\n', m_read); };
    if (!comesTrue([&] { return end() >= 0; })) {
        ADD_FAILURE() << m_process.program().toStdString() << " writes no further line";
        return {};
    }
    QByteArray line = m_output.mid(m_read, end() - m_read);
    m_read += line.size() + 1;
    return line;
}

QByteArray run(const QString& program, const QStringList& arguments, const QProcessEnvironment& environment) {
    Process process(program, arguments, environment);
    EXPECT_EQ(process.wait(), 0) << program.toStdString() << ' ' << arguments.join(' ').toStdString() << '\n'
                                 << process.errors().toStdString();
    return process.output();
}

} // namespace velmora::test
