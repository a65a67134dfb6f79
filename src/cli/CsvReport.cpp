#include "cli/CsvReport.h"

#include "cli/Seconds.h"
#include "records/DisplayFormat.h"

#include <concepts>
#include <string>
#include <string_view>

namespace velmora {

namespace {

constexpr std::string_view lineEnd = "\r\n";

/// `text` in quotes, those in it doubled; empty for what is not known.
std::string cell(std::string_view text) {
    if (text.empty()) {
        return "";
    }
    std::string quoted = "\"";
    for (const char c : text) {
        quoted += c == '"' ? "\"\"" : std::string(1, c);
    }
    return quoted + '"';
}

/// `number`; empty for 0, which is not known.
template <std::unsigned_integral Number>
std::string cell(Number number) {
    return number == 0 ? "" : std::to_string(number);
}

std::string row(const Measured& file, const ScanDetails& details, double speed) {
    const double seconds = file.seconds / speed;
    const bool isMeasured = file.seconds >= 0;
    std::string row = cell(details.shownName(file.url.native())) + ',';
    row += (isMeasured ? threeDecimals(seconds) : "") + ',';
    row += cell(isMeasured ? hms(displayable(seconds)) : "") + ',';
    row += std::to_string(file.bytes) + ',';
    row += cell(file.format.text()) + ',' + cell(file.sampleRate) + ',' + cell(file.channels);
    return row += lineEnd;
}

} // namespace

void csvReport(const Sink& out, const ScanDetails& details, double speed) {
    out("path,seconds,length,bytes,format,sample_rate,channels");
    out(lineEnd);
    for (const Measured& file : details.files) {
        out(row(file, details, speed));
    }
}

} // namespace velmora
