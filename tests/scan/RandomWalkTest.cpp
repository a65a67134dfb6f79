// Thousands of random sequences of what can be asked of a scan model, while its background work goes on as it
// likes. A small reference model says what may be published.

#include "tests/scan/ReferenceModel.h"
#include "tests/scan/ScanModelFixture.h"
#include "tests/support/Files.h"

#include <QDeadlineTimer>
#include <QTimer>

#include <algorithm>
#include <condition_variable>
#include <cstdlib>
#include <iostream>
#include <mutex>
#include <optional>
#include <random>
#include <sstream>

namespace velmora::test {
namespace {

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr int sequences = 500; // a sanitizer makes threads slow to start
#else
constexpr int sequences = 10'000;
#endif

constexpr int maxSteps = 8;
constexpr int maxFiles = 13; // more than twice what is measured at the same time

/// Lets background work begin as often as the test says.
class Gate {
public:
    void pass(const std::stop_token& stop) {
        std::unique_lock lock(m_lock);
        m_changed.wait(lock, stop, [this] { return m_free > 0; });
        --m_free;
    }

    void open(int count) {
        const std::lock_guard guard(m_lock);
        m_free = std::max(m_free, 0) + count;
        m_changed.notify_all();
    }

private:
    std::mutex m_lock;
    std::condition_variable_any m_changed;
    int m_free = 0;
};

class RandomWalk : public ScanModelTest {
protected:
    /// Walks `steps` steps and to the end of all work.
    void walk(int steps) {
        m_reference = {};
        m_wakeUp.start(std::chrono::seconds(1));
        m_gate.emplace();
        createModel({[this](const PathList& urls, const std::stop_token& stop, const Unpacking&) {
                         m_gate->pass(stop);
                         const Drop drop = Drop::of(urls.paths());
                         return GatherResult{{drop.files.begin(), drop.files.end()}, {}, {}, drop.skipped};
                     },
                     [this](const fs::path& url, const std::stop_token& stop) {
                         m_gate->pass(stop);
                         return Measured{url, stop.stop_requested() ? unmeasured : lengthOf(url), 10};
                     }});
        record();
        m_history.str("");
        for (int i = 0; i < steps && !HasFailure(); ++i) {
            step();
        }
        settle();
        expectTheReferenceSummary();
        model.reset();
    }

    int below(int bound) { return std::uniform_int_distribution(0, bound - 1)(m_random); }

    std::mt19937 m_random;

private:
    void step() {
        switch (below(8)) {
        case 0:
        case 1:
        case 2:
            ingest();
            break;
        case 3:
            m_history << " nothing";
            model->ingest({});
            expectAtOnce({});
            break;
        case 4:
            m_history << " reset";
            model->reset();
            expectAtOnce(m_reference.reset());
            break;
        case 5:
            makeZip();
            break;
        case 6:
            settle();
            break;
        default:
            letSomeTimePass();
        }
    }

    void ingest() {
        const bool filesExist = below(10) == 0;
        Paths urls = {(filesExist ? m_folder : fs::path("/m")) /
                      (std::to_string(below(maxFiles + 1)) + "-" + std::to_string(below(3)))};
        urls.resize(static_cast<std::size_t>(1 + below(3)), "/m/other");
        m_history << " ingest " << urls.front() << " of " << urls.size();
        model->ingest(urls);
        expectAtOnce(m_reference.ingest(Drop::of(urls)));
    }

    void makeZip() {
        m_history << " zip";
        const fs::path destination = m_folder / (std::to_string(++m_zips) + ".zip");
        const PathList& files = model->summary().files;
        const bool filesExist = !files.empty() && files.front().parent_path() == m_folder;
        model->makeZip(destination);
        expectAtOnce(m_reference.makeZip(destination, filesExist));
    }

    void letSomeTimePass() {
        const int count = below(maxFiles);
        m_history << " time " << count;
        m_gate->open(count);
        for (int turn = below(3); turn >= 0; --turn) {
            std::this_thread::yield();
            takeTurn();
        }
    }

    /// Lets all work come to its end.
    void settle() {
        m_history << " settle";
        constexpr int allThereCanBe = 1'000'000;
        m_gate->open(allThereCanBe);
        const QDeadlineTimer deadline(std::chrono::minutes(1));
        takeTurn();
        while (!m_reference.isQuiet() && !HasFailure()) {
            ASSERT_FALSE(deadline.hasExpired()) << "waited in vain" << m_history.str();
            takeTurn(QEventLoop::WaitForMoreEvents);
        }
        m_gate->open(-allThereCanBe);
    }

    void takeTurn(QEventLoop::ProcessEventsFlags flags = QEventLoop::AllEvents) {
        QCoreApplication::processEvents(flags);
        for (const std::string& line : takeRecord()) {
            EXPECT_TRUE(m_reference.takes(line)) << line << " after" << m_history.str();
        }
    }

    void expectAtOnce(const Lines& lines) { EXPECT_EQ(takeRecord(), lines) << m_history.str(); }

    /// What the publications do not show of the summary.
    void expectTheReferenceSummary() {
        const std::vector<Measured> expected =
            m_reference.isScanned() ? measuredOf(m_reference.drop().files) : std::vector<Measured>();
        Paths files;
        double seconds = 0;
        for (const Measured& file : expected) {
            files.push_back(file.url);
            seconds += file.seconds;
        }
        const ScanSummary& summary = model->summary();
        EXPECT_EQ(summary.files, files) << m_history.str();
        EXPECT_EQ(summary.seconds, seconds) << m_history.str();
        EXPECT_EQ(summary.bytes, static_cast<std::int64_t>(10 * files.size())) << m_history.str();
        EXPECT_EQ(summary.dropped, m_reference.isScanned() ? m_reference.drop().urls : Paths())
            << m_history.str();
    }

    static fs::path folderOfTracks() {
        const fs::path folder = freshFolder();
        for (int i = 0; i < maxFiles; ++i) {
            write(folder / (std::to_string(i) + ".wav"), "bytes");
        }
        return folder;
    }

    const fs::path m_folder = folderOfTracks();
    std::optional<Gate> m_gate;
    ReferenceModel m_reference;
    std::ostringstream m_history;
    QTimer m_wakeUp; ///< ends a wait for what does not come
    int m_zips = 0;
};

TEST_F(RandomWalk, PublishesWhatTheReferenceModelDoes) {
    const char* const given = std::getenv("VELMORA_SEED");
    const unsigned seed =
        given == nullptr ? std::random_device()() : static_cast<unsigned>(std::stoul(given));
    std::cout << sequences << " sequences, VELMORA_SEED=" << seed << "\n";
    m_random.seed(seed);
    for (int i = 0; i < sequences && !HasFailure(); ++i) {
        walk(1 + below(maxSteps));
    }
    EXPECT_FALSE(HasFailure()) << "VELMORA_SEED=" << seed;
}

} // namespace
} // namespace velmora::test
