#pragma once

// The options of a command line, in GNU style: options and other words in any order, "--" ends the options,
// "-qf" is "-q -f", "--zip=FILE" is "--zip FILE", and so is an unmistakable beginning ("--zi FILE").

#include "system/Paths.h"

#include <getopt.h>

#include <span>
#include <string>
#include <vector>

namespace velmora {

/// An option without a letter has a value from here on, so that it differs from all letters.
inline constexpr int firstOptionWithoutLetter = 256;

/// Reads one command line from its beginning to its end. One object at a time, one thread: getopt_long(3)
/// does the work, whose state is the process's.
class OptionReader {
public:
    /// `shortOptions` and `longOptions` are as getopt_long takes them: the first begin with a colon, the last
    /// of the others is all null. All of these outlive the reader, which changes the order of `arguments`;
    /// the program's name is not among these.
    OptionReader(std::vector<std::string>& arguments, const char* shortOptions,
                 std::span<const option> longOptions);

    /// The next option's letter or value; '?' for one that is wrong, ':' for one without its value, -1 after
    /// the last. The value that was given with it, if any, is then in getopt's `optarg`.
    int next();

    /// Why `next` gave `answer`, '?' or ':', in a sentence without a full stop, fit for a terminal.
    std::string error(int answer) const;

    /// After the last option: the words that are none, in their order.
    Paths rest() const;

private:
    std::string nameOf(int value) const;

    int count() const { return static_cast<int>(m_words.size()) - 1; }

    const char* m_shortOptions;
    std::span<const option> m_longOptions;
    std::string m_program; ///< getopt wants one
    std::vector<char*> m_words;
};

} // namespace velmora
