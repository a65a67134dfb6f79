#include "system/OptionReader.h"

#include "system/Names.h"

#include <algorithm>

namespace velmora {

OptionReader::OptionReader(std::vector<std::string>& arguments, const char* shortOptions,
                           std::span<const option> longOptions)
    : m_shortOptions(shortOptions)
    , m_longOptions(longOptions)
    , m_words{m_program.data()} {
    for (std::string& argument : arguments) {
        m_words.push_back(argument.data());
    }
    m_words.push_back(nullptr);
    optind = 0; // also forgets where in a word of combined options the last reading ended
    opterr = 0; // the messages are ours
}

int OptionReader::next() {
    return ::getopt_long(count(), m_words.data(), m_shortOptions, m_longOptions.data(), nullptr);
}

std::string OptionReader::error(int answer) const {
    const int wrong = optopt;
    const std::string name = nameOf(wrong);
    if (answer == ':') {
        return "option " + quotedName(name) + " needs a value";
    }
    if (wrong == 0) {
        return "unknown option " + quotedName(m_words[static_cast<std::size_t>(optind - 1)]);
    }
    const bool known = std::ranges::any_of(m_longOptions, [&](const option& o) { return o.val == wrong; });
    return known ? "option " + quotedName(name) + " takes no value" : "unknown option " + quotedName(name);
}

Paths OptionReader::rest() const {
    return {m_words.begin() + optind, m_words.end() - 1};
}

/// "-q", or "--csv" for an option without a letter; "" for none.
std::string OptionReader::nameOf(int value) const {
    if (value < firstOptionWithoutLetter) {
        return value == 0 ? std::string() : std::string{'-', static_cast<char>(value)};
    }
    return std::string("--") + std::ranges::find(m_longOptions, value, &option::val)->name;
}

} // namespace velmora
