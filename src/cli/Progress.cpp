#include "cli/Progress.h"

#include "cli/Terminal.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdlib>

namespace velmora {

namespace {

constexpr auto drawingPause = std::chrono::milliseconds(40);
constexpr int usualColumns = 80; // where the terminal does not tell
constexpr int maxBarWidth = 40;
constexpr int minBarWidth = 8;
constexpr int barFrameWidth = 4; // two blanks and two brackets

constexpr std::string_view toLineStart = "\r";
constexpr std::string_view eraseToLineEnd = "\x1b[K";
constexpr std::string_view brightCyan = "\x1b[96m";
constexpr std::string_view plainColour = "\x1b[0m";

std::string variable(const char* name) {
    const char* value = std::getenv(name);
    return value == nullptr ? "" : value;
}

int terminalColumns() {
    winsize size{};
    const bool told = ::ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0;
    return told ? size.ws_col : usualColumns;
}

std::string bar(const Advance& advance, int width, Colour colour) {
    const double share =
        static_cast<double>(advance.done) / static_cast<double>(std::max<std::int64_t>(advance.total, 1));
    const auto filled = static_cast<std::size_t>(std::clamp(share, 0.0, 1.0) * width);
    std::string full(filled, '#');
    if (colour == Colour::on) {
        full = std::string(brightCyan) + full + std::string(plainColour);
    }
    return "  [" + full + std::string(static_cast<std::size_t>(width) - filled, '-') + "]";
}

/// "31 / 48", "1.2 / 3.4 GB".
std::string countText(const Advance& advance) {
    if (advance.unit == Unit::pieces) {
        return std::to_string(advance.done) + " / " + std::to_string(advance.total);
    }
    constexpr std::array<const char*, 4> units = {" KB", " MB", " GB", " TB"};
    std::size_t unit = 0;
    std::int64_t tenth = 100; // of a unit, in bytes
    while (advance.total / tenth >= 10'000 && unit + 1 < units.size()) {
        tenth *= 1000;
        ++unit;
    }
    const auto inUnits = [tenth](std::int64_t bytes) {
        const std::int64_t tenths = bytes / tenth;
        return std::to_string(tenths / 10) + "." + std::to_string(tenths % 10);
    };
    return inUnits(advance.done) + " / " + inUnits(advance.total) + units[unit];
}

} // namespace

std::string progressLine(std::string_view stage, const std::optional<Advance>& advance, int columns,
                         Colour colour) {
    const int room = std::max(columns - 1, 0); // a character in the last column may wrap
    std::string line(stage);
    if (advance) {
        line += " " + countText(*advance);
    }
    const int barWidth = std::min(room - static_cast<int>(line.size()) - barFrameWidth, maxBarWidth);
    if (advance && barWidth >= minBarWidth) {
        return line + bar(*advance, barWidth, colour);
    }
    return line.substr(0, static_cast<std::size_t>(room));
}

Progress::Progress(bool wanted)
    : m_colour(variable("NO_COLOR").empty() ? Colour::on : Colour::off) {
    const std::string terminal = variable("TERM");
    m_enabled = wanted && ::isatty(STDERR_FILENO) == 1 && !terminal.empty() && terminal != "dumb";
}

Progress::~Progress() {
    clear();
}

void Progress::show(std::string_view stage, const std::optional<Advance>& advance) {
    const auto now = std::chrono::steady_clock::now();
    const bool last = advance && advance->done == advance->total;
    if (!m_enabled || (stage == m_stage && !last && now - m_drawn < drawingPause)) {
        return;
    }
    m_stage = stage;
    m_drawn = now;
    writeText(STDERR_FILENO, std::string(toLineStart) +
                                 progressLine(stage, advance, terminalColumns(), m_colour) +
                                 std::string(eraseToLineEnd));
}

void Progress::clear() {
    if (!m_stage.empty()) {
        writeText(STDERR_FILENO, std::string(toLineStart) + std::string(eraseToLineEnd));
        m_stage.clear();
    }
}

} // namespace velmora
