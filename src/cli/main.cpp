// velmora-scan: how long does all this audio play? Answered in the terminal.

#include "cli/Options.h"
#include "cli/Session.h"
#include "cli/Sources.h"
#include "cli/Terminal.h"
#include "scan/Installation.h"
#include "system/AddressSpace.h"
#include "system/EndingSignals.h"
#include "system/ForcedEnd.h"
#include "system/Names.h"

#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <exception>
#include <new>
#include <string>
#include <system_error>

namespace velmora {

namespace {

/// Answers a signal where there is nothing to clean up.
extern "C" void endProgram(int /*signal*/) {
    ::_exit(static_cast<int>(ExitStatus::interrupted));
}

std::string reasonOf(const std::exception& error) {
    const bool lacksMemory = dynamic_cast<const std::bad_alloc*>(&error) != nullptr;
    return lacksMemory ? std::generic_category().message(ENOMEM)
                       : terminalLines(error.what()); // it may hold a path as it is
}

/// Answers what a thread throws and nothing catches, which is for want of memory. Anything else that ends the
/// program this way is a defect of it.
[[noreturn]] void endAtUncaught() {
    static std::atomic_flag isEnding;
    while (isEnding.test_and_set()) {
        ::pause(); // another thread is here already
    }
    try {
        if (const std::exception_ptr thrown = std::current_exception()) {
            std::rethrow_exception(thrown);
        }
    } catch (const std::exception& error) {
        complain(reasonOf(error));
        endNow(static_cast<int>(ExitStatus::nothingMeasured));
    }
    std::abort();
}

ExitStatus carryOut(const Options& options) {
    Sources sources;
    try {
        sources = locate(givenPaths(options));
    } catch (const std::system_error& error) {
        complain(error.what());
        return ExitStatus::usage;
    }
    std::ranges::for_each(sources.problems, &complain);

    const Outcome outcome = runScan(options, sources.paths);
    std::ranges::for_each(outcome.problems, &complain);
    if (outcome.status == ExitStatus::interrupted) {
        return outcome.status;
    }
    const bool written = writeOutput(outcome.report);
    if (outcome.status == ExitStatus::complete && (!written || !sources.problems.empty())) {
        return ExitStatus::incomplete;
    }
    return outcome.status;
}

ExitStatus carryOut(const TextWanted& wanted) {
    return writeOutput([&](const Sink& out) { out(wanted.text); }) ? ExitStatus::complete
                                                                   : ExitStatus::incomplete;
}

ExitStatus carryOut(const InstallationWanted& /*wanted*/) {
    return carryOut(TextWanted{versionText() + installationReport()});
}

ExitStatus carryOut(const UsageError& error) {
    complain(error.text);
    complain("'velmora-scan --help' tells more");
    return ExitStatus::usage;
}

} // namespace

} // namespace velmora

int main(int argc, char** argv) {
    using namespace velmora;
    reserveStandardDescriptors();
    std::signal(SIGPIPE, SIG_IGN); // a reader that went away is an error of the write
    std::signal(SIGXFSZ, SIG_IGN); // so is a file that would grow beyond the limit
    handleEndingSignals(&endProgram);
    std::set_terminate(&endAtUncaught);
    saveAddressSpace();
    try {
        const CommandLine line = parseCommandLine({argv + std::min(argc, 1), argv + argc});
        return static_cast<int>(std::visit([](const auto& asked) { return carryOut(asked); }, line));
    } catch (const std::exception& error) {
        complain(reasonOf(error));
        return static_cast<int>(ExitStatus::nothingMeasured);
    }
}
