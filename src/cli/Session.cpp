#include "cli/Session.h"

#include "cli/Progress.h"
#include "cli/Report.h"
#include "cli/Sources.h"
#include "scan/CheckingStage.h"
#include "scan/ScanModel.h"
#include "system/EndingSignals.h"
#include "system/FileName.h"
#include "system/ForcedEnd.h"
#include "system/Names.h"
#include "system/PrivateDirectory.h"

#include <QCoreApplication>
#include <QSocketNotifier>

#include <algorithm>
#include <array>
#include <iterator>
#include <optional>
#include <utility>
#include <variant>

namespace velmora {

namespace {

namespace fs = std::filesystem;

/// The application object, which wants the program's arguments: a name is enough.
class Application {
private:
    int m_count = 1;
    std::string m_name = "velmora-scan";
    std::array<char*, 2> m_words = {m_name.data(), nullptr};
    QCoreApplication m_application{m_count, m_words.data()};
};

/// Runs the model's work one after the other in the event loop. The members stand in the order in which they
/// need each other: background work ends first, then its directory goes, then a signal that came meanwhile is
/// raised again.
class Session {
public:
    explicit Session(const Options& options)
        : m_progress(!options.quiet) {
        QObject::connect(&*m_model, &ScanModel::statusChanged, &*m_model, [this] { scanMoved(); });
        QObject::connect(&*m_model, &ScanModel::processedChanged, &*m_model, [this] { showMeasuring(); });
        QObject::connect(&*m_model, &ScanModel::zipStateChanged, &*m_model, [this] { zipMoved(); });
        QObject::connect(&m_signalNotifier, &QSocketNotifier::activated, &*m_model, [this] {
            takeSignals();
            QCoreApplication::quit();
        });
    }

    /// False when it was interrupted.
    bool scan(const PathList& paths) {
        const bool isNothing = paths.empty();
        m_model->ingest(paths);
        return isNothing || awaitEnd();
    }

    /// Checks the files of the scan that has ended. False when it was interrupted.
    bool check() {
        const std::vector<Measured>& files = m_model->details().files;
        m_checks.emplace(files, [this] { checkMoved(); });
        return files.empty() || awaitEnd();
    }

    /// Empty without a check.
    CheckResults checkResults() const { return m_checks ? m_checks->results() : CheckResults(); }

    /// False when it was interrupted.
    bool zip(const fs::path& destination) {
        m_model->makeZip(destination);
        return awaitEnd();
    }

    const ScanModel& model() const { return *m_model; }

    /// Ends all work and removes the private directory; "" or what to say of one that stays. Nothing else may
    /// be asked for afterwards.
    std::string end() {
        const fs::path directory = PrivateDirectory::present();
        m_checks.reset();
        m_model.reset();
        return m_directory.remove() ? "" : "cannot remove " + quotedName(directory.native());
    }

    /// Why nothing temporary can be made: no archive is unpacked then and no zip written. "" where it can.
    std::string problem() const {
        if (!m_directory.failure()) {
            return "";
        }
        return "cannot make a directory in " + quotedName(m_directory.parent().native()) + ": " +
               m_directory.failure().message();
    }

private:
    bool awaitEnd() {
        QCoreApplication::exec();
        m_progress.clear();
        takeSignals();
        return !m_interrupted;
    }

    void takeSignals() {
        if (m_signals.take() && !std::exchange(m_interrupted, true)) {
            endSoon(m_signals.descriptor(), static_cast<int>(ExitStatus::interrupted));
        }
    }

    void scanMoved() {
        switch (m_model->phase()) {
        case ScanModel::Phase::idle:
            break;
        case ScanModel::Phase::scanning:
            m_progress.show(m_model->status());
            break;
        case ScanModel::Phase::done:
        case ScanModel::Phase::empty:
            QCoreApplication::quit(); // the status is the last thing published
        }
    }

    void showMeasuring() {
        if (m_model->found() > 0) {
            m_progress.show(m_model->status(), Advance{m_model->processed(), m_model->found()});
        }
    }

    void checkMoved() {
        m_progress.show("CHECKING", Advance{m_checks->bytesRead(), m_checks->bytesTotal(), Unit::bytes});
        if (m_checks->hasEnded()) {
            QCoreApplication::quit();
        }
    }

    void zipMoved() {
        const ZipState& state = m_model->zipState();
        if (const auto* working = std::get_if<ZipWorking>(&state)) {
            m_progress.show("ZIPPING", Advance{working->done, working->total});
        } else if (!std::holds_alternative<ZipIdle>(state)) {
            QCoreApplication::quit();
        }
    }

    Application m_application;
    EndingSignals m_signals;
    QSocketNotifier m_signalNotifier{m_signals.descriptor(), QSocketNotifier::Read};
    bool m_interrupted = false;
    Progress m_progress;
    PrivateDirectory m_directory;
    std::optional<ScanModel> m_model{std::in_place};
    std::optional<CheckingStage> m_checks;
};

ExitStatus statusOf(const ScanModel& model) {
    if (model.summary().fileCount == 0) {
        return ExitStatus::nothingMeasured;
    }
    const bool isMissing = model.summary().unreadable > 0 || !model.details().unreadableFolders.empty();
    return isMissing ? ExitStatus::incomplete : ExitStatus::complete;
}

/// Writes the zip export of a scan that has ended to `destination`, an absolute path.
void makeZip(Session& session, const fs::path& destination, Outcome& outcome) {
    const std::string failure = "cannot write the zip archive: ";
    if (outcome.status == ExitStatus::nothingMeasured) {
        outcome.problems.push_back(failure + "nothing was measured");
        return;
    }
    if (!session.problem().empty()) {
        outcome.problems.push_back(failure + session.problem());
        outcome.status = ExitStatus::zipFailed;
    } else if (const std::optional<std::string> objection = session.model().objectionToZip(destination)) {
        outcome.problems.push_back(failure + terminalText(*objection));
        outcome.status = ExitStatus::zipFailed;
    } else if (!session.zip(destination)) {
        outcome = {.status = ExitStatus::interrupted, .report = {}, .problems = {}};
    } else if (const auto* failed = std::get_if<ZipFailed>(&session.model().zipState())) {
        outcome.problems.push_back(failure + terminalText(failed->text));
        outcome.status = ExitStatus::zipFailed;
    }
}

/// Scans `paths`, and packs to `zip` unless that is empty.
Outcome carryOut(Session& session, const Options& options, const PathList& paths, const fs::path& zip) {
    if (!session.scan(paths)) {
        return {.status = ExitStatus::interrupted, .report = {}, .problems = {}};
    }
    if (options.check && !session.check()) {
        return {.status = ExitStatus::interrupted, .report = {}, .problems = {}};
    }
    const ScanModel& model = session.model();
    const CheckResults checks = session.checkResults();
    Outcome outcome{.status = statusOf(model),
                    .report =
                        report(options, {model.status(), model.summary(), model.sharedDetails(), checks}),
                    .problems = problems(model.details())};
    std::ranges::move(checkProblems(model.details(), checks), std::back_inserter(outcome.problems));
    const bool isFlawless =
        std::ranges::all_of(checks, [](const Checked& file) { return file == Checked{}; });
    if (!isFlawless && outcome.status == ExitStatus::complete) {
        outcome.status = ExitStatus::incomplete;
    }
    if (!session.problem().empty() && !model.details().skippedArchives.empty()) {
        outcome.problems.insert(outcome.problems.begin(), session.problem());
    }
    if (!zip.empty()) {
        makeZip(session, zip, outcome);
    }
    return outcome;
}

} // namespace

Outcome runScan(const Options& options, const PathList& paths) {
    const fs::path zip = options.zip ? absolutePath(*options.zip) : fs::path();
    Session session(options);
    Outcome outcome = carryOut(session, options, paths, zip);
    if (const std::string problem = session.end(); !problem.empty()) {
        outcome.problems.push_back(problem);
        outcome.status = outcome.status == ExitStatus::complete ? ExitStatus::incomplete : outcome.status;
    }
    return outcome;
}

} // namespace velmora
