#include "cli/CsvReport.h"

#include "cli/Seconds.h"
#include "records/DisplayFormat.h"

#include <concepts>
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

void append(std::string& table, const Measured& file, const ScanDetails& details, double speed) {
    const double seconds = file.seconds / speed;
    const bool isMeasured = file.seconds >= 0;
    table += cell(details.shownPath(file.url).native()) + ',';
    table += (isMeasured ? threeDecimals(seconds) : "") + ',';
    table += cell(isMeasured ? hms(displayable(seconds)) : "") + ',';
    table += std::to_string(file.bytes) + ',';
    table += cell(file.format.text()) + ',' + cell(file.sampleRate) + ',' + cell(file.channels);
    table += lineEnd;
}

} // namespace

std::string csvReport(const ScanDetails& details, double speed) {
    std::string table = "path,seconds,length,bytes,format,sample_rate,channels";
    table += lineEnd;
    for (const Measured& file : details.files) {
        append(table, file, details, speed);
    }
    return table;
}

} // namespace velmora
