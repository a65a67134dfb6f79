#include "tests/scan/ScanModelFixture.h"

#include "system/Paths.h"

#include <QMetaEnum>
#include <QTest>

#include <algorithm>
#include <utility>

namespace velmora::test {

Measured HeldMeasuring::measure(const std::filesystem::path& file, const std::stop_token& stop) {
    std::unique_lock lock(m_lock);
    m_started.push_back(file);
    m_changed.notify_all();
    m_changed.wait(lock, stop, [this] { return m_free > 0; });
    if (stop.stop_requested()) {
        return {file, unmeasured, 0}; // what was let go is for one that was not cancelled
    }
    --m_free;
    return {file, 1.0, 10};
}

void HeldMeasuring::release(int count) {
    const std::lock_guard guard(m_lock);
    m_free += count;
    m_changed.notify_all();
}

void HeldMeasuring::awaitStarted(std::size_t count) {
    std::unique_lock lock(m_lock);
    EXPECT_TRUE(
        m_changed.wait_for(lock, std::chrono::seconds(60), [&] { return m_started.size() >= count; }));
}

Paths HeldMeasuring::started() {
    const std::lock_guard guard(m_lock);
    return m_started;
}

void ScanModelTest::createModel(ScanStages stages) {
    model = std::make_unique<ScanModel>(std::move(stages));
}

void ScanModelTest::createModel() {
    model = std::make_unique<ScanModel>();
}

void ScanModelTest::createModel(const Paths& files, std::map<std::string, double> lengths) {
    createModel(
        {[files](const PathList&, const std::stop_token&, const Unpacking&) { return gathered(files); },
         [lengths = std::move(lengths)](const std::filesystem::path& file, const std::stop_token&) {
             const auto length = lengths.find(file.filename());
             return Measured{file, length == lengths.end() ? unmeasured : length->second, 1000};
         }});
}

void ScanModelTest::record() {
    const ScanModel* observed = model.get();
    const auto write = [this](const std::string& line) { m_record.push_back(line); };
    QObject::connect(observed, &ScanModel::phaseChanged, [=](ScanModel::Phase phase) {
        write(std::string("phase ") +
              QMetaEnum::fromType<ScanModel::Phase>().valueToKey(static_cast<int>(phase)));
    });
    QObject::connect(observed, &ScanModel::summaryChanged, [=] {
        const ScanSummary& summary = observed->summary();
        write("summary " + std::to_string(summary.fileCount) + "/" + std::to_string(summary.unreadable) +
              " " + std::to_string(summary.dropped.size()) + " dropped '" + summary.source + "'");
    });
    QObject::connect(observed, &ScanModel::processedChanged,
                     [=](int processed) { write("processed " + std::to_string(processed)); });
    QObject::connect(observed, &ScanModel::foundChanged,
                     [=](int found) { write("found " + std::to_string(found)); });
    QObject::connect(observed, &ScanModel::statusChanged,
                     [=](const std::string& status) { write("status " + status); });
    QObject::connect(observed, &ScanModel::zipStateChanged,
                     [=] { write("zip " + text(observed->zipState())); });
}

void ScanModelTest::awaitThat(const std::function<bool()>& done) {
    ASSERT_TRUE(QTest::qWaitFor(done, 60000));
}

void ScanModelTest::awaitStatus(const std::string& status) {
    awaitThat([&] { return model->status() == status; });
}

std::vector<std::string> ScanModelTest::takeRecord() {
    return std::exchange(m_record, {});
}

std::vector<std::string> ScanModelTest::takeRecordOf(const std::string& field) {
    std::vector<std::string> lines = takeRecord();
    std::erase_if(lines, [&](const std::string& line) { return !line.starts_with(field + " "); });
    return lines;
}

std::string text(const ZipState& state) {
    struct Text {
        std::string operator()(const ZipIdle&) const { return "idle"; }

        std::string operator()(const ZipWorking& working) const {
            return "working " + std::to_string(working.done) + "/" + std::to_string(working.total);
        }

        std::string operator()(const ZipDone& done) const { return "done " + done.path.native(); }

        std::string operator()(const ZipFailed& failed) const { return "failed " + failed.text; }
    };

    return std::visit(Text{}, state);
}

} // namespace velmora::test
