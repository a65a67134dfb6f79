#pragma once

// A scan model on a real event loop, its publications written down in order, with stages a test can hold.

#include "scan/ScanModel.h"
#include "system/Paths.h"

#include <QCoreApplication>
#include <QSignalSpy>

#include <gtest/gtest.h>

#include <condition_variable>
#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <vector>

namespace velmora::test {

/// Measuring that waits until a test lets it go, on the real worker threads.
class HeldMeasuring {
public:
    Measured measure(const std::filesystem::path& file, const std::stop_token& stop);

    /// Lets `count` further measurements end.
    void release(int count);

    /// Waits until `count` measurements have begun.
    void awaitStarted(std::size_t count);

    /// The files whose measurement has begun, in that order.
    Paths started();

private:
    std::mutex m_lock;
    std::condition_variable_any m_changed;
    Paths m_started;
    int m_free = 0;
};

class ScanModelTest : public testing::Test {
protected:
    /// A model that finds `files` whatever is dropped, and measures them with `lengths` by file name (-1.0
    /// for others).
    void createModel(const Paths& files, std::map<std::string, double> lengths = {});

    /// A model with these stages.
    void createModel(ScanStages stages);

    /// A model that does the real work.
    void createModel();

    /// Writes down everything the model publishes from here on, as "phase scanning", "processed 4".
    void record();

    /// Runs the event loop until the model shows `status`; a test failure if that takes too long.
    void awaitStatus(const std::string& status);

    /// Runs the event loop until `done` answers yes; a test failure if that takes too long.
    void awaitThat(const std::function<bool()>& done);

    /// What was written down, and starts anew.
    std::vector<std::string> takeRecord();

    /// "processed 4" and the like alone.
    std::vector<std::string> takeRecordOf(const std::string& field);

    static GatherResult gathered(const Paths& files) { return {{files.begin(), files.end()}, {}, {}, {}}; }

    HeldMeasuring held; // outlives the model's workers
    std::unique_ptr<ScanModel> model;

private:
    int m_argc = 1;
    std::string m_name = "test";
    char* m_argv = m_name.data();
    QCoreApplication m_application{m_argc, &m_argv};
    std::vector<std::string> m_record;
};

/// "done", "working 3/12", ...
std::string text(const ZipState& state);

} // namespace velmora::test
