#include "cli/Report.h"

#include "cli/CsvReport.h"
#include "cli/FoldersReport.h"
#include "cli/Seconds.h"
#include "scan/Missing.h"
#include "scan/Reports.h"
#include "system/Names.h"

#include <optional>
#include <string_view>
#include <system_error>
#include <utility>

namespace velmora {

namespace {

std::string problem(std::string_view what, const Missing& missing, const ScanDetails& details) {
    return std::string(what) + " " + quotedName(details.shownName(missing.path.native())) + ": " +
           missing.why;
}

} // namespace

Text report(const Options& options, ScanResult result) {
    return [options, result = std::move(result)](const Sink& out) {
        switch (options.output) {
        case Output::total:
            out(totalText(result.summary, options.speed) + "\n");
            break;
        case Output::list:
            namesReport(out, result.summary.files);
            break;
        case Output::files:
            filesReport(out, *result.details, options.speed);
            break;
        case Output::folders:
            foldersReport(out, *result.details, result.summary.dropped, options.depth, options.speed);
            break;
        case Output::csv:
            csvReport(out, *result.details, options.speed);
            break;
        case Output::json:
            jsonReport(out, result.status, result.summary, *result.details, result.checks, options.speed);
            break;
        case Output::findings:
            findingsReport(out, *result.details, result.checks);
            break;
        }
    };
}

void namesReport(const Sink& out, const PathList& files) {
    eachName(files, out);
    out("\n");
}

void filesReport(const Sink& out, const ScanDetails& details, double speed) {
    for (const Measured& file : details.files) {
        out((file.seconds < 0 ? "-" : threeDecimals(file.seconds / speed)) + "\t" +
            fieldName(details.shownName(file.url.native())) + "\n");
    }
}

void findingsReport(const Sink& out, const ScanDetails& details, const CheckResults& checks) {
    const auto field = [](const std::optional<double>& seconds) {
        return (seconds ? threeDecimals(*seconds) : "-") + "\t";
    };
    for (std::size_t i = 0; i < checks.size(); ++i) {
        const std::string path = fieldName(details.shownName(details.files[i].url.native()));
        for (const Finding& finding : checks[i].findings) {
            out(std::string(nameOf(finding.kind)) + "\t" + field(finding.stated) + field(finding.found) +
                path + "\n");
        }
    }
}

std::vector<std::string> problems(const ScanDetails& details) {
    std::vector<std::string> messages;
    for (const UnreadableFolder& folder : details.unreadableFolders) {
        messages.push_back(problem("cannot read", missing(folder), details));
    }
    for (const SkippedArchive& archive : details.skippedArchives) {
        messages.push_back(problem("cannot unpack", missing(archive), details));
    }
    for (const Measured& file : details.files) {
        if (file.seconds < 0) {
            messages.push_back(problem("cannot time", missing(file), details));
        }
    }
    return messages;
}

std::vector<std::string> checkProblems(const ScanDetails& details, const CheckResults& checks) {
    std::vector<std::string> messages;
    for (std::size_t i = 0; i < checks.size(); ++i) {
        if (checks[i].error != 0) {
            const Missing rest{details.files[i].url, std::generic_category().message(checks[i].error)};
            messages.push_back(problem("cannot check", rest, details));
        }
    }
    return messages;
}

} // namespace velmora
