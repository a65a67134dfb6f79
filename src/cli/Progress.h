#pragma once

// The line on the terminal that tells how far a scan is. It is written to standard error, over itself, and is
// gone when the program ends.
//
//   MEASURING 31 / 48  [#########################---------------]
//   CHECKING 1.2 / 3.4 GB  [##############--------------------------]

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace velmora {

enum class Unit : std::uint8_t { pieces, bytes };

/// How far a stage is.
struct Advance {
    std::int64_t done = 0;
    std::int64_t total = 0;
    Unit unit = Unit::pieces;
};

enum class Colour : std::uint8_t { off, on };

/// The line for `stage` on a terminal of `columns` columns, at most columns - 1 wide: the bar shrinks, then
/// goes, then the text is cut. Without `advance` it is the stage's name alone.
std::string progressLine(std::string_view stage, const std::optional<Advance>& advance, int columns,
                         Colour colour);

/// Main thread.
class Progress {
public:
    /// Shows nothing unless `wanted`, and only on a terminal that can take a line back: not where TERM is
    /// unset or "dumb". Without colour where NO_COLOR is set and not empty.
    explicit Progress(bool wanted);
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;
    ~Progress();

    /// At most some 25 times a second, but always when a stage begins or ends.
    void show(std::string_view stage, const std::optional<Advance>& advance = std::nullopt);

    void clear();

private:
    bool m_enabled = false;
    Colour m_colour = Colour::on;
    std::string m_stage; // the one on the terminal; "" when there is none
    std::chrono::steady_clock::time_point m_drawn;
};

} // namespace velmora
