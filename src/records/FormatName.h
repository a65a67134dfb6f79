#pragma once

// What a format is called: a text that lies in the program for as long as it runs, in the eight bytes that
// a record of each of a million files can spare for it.

#include <string_view>

namespace velmora {

class FormatName {
public:
    /// "": not known.
    constexpr FormatName() = default;

    /// Takes nothing but what is known when it is compiled, a literal: that is never freed.
    consteval FormatName(const char* name) // NOLINT(google-explicit-constructor): a literal is a name
        : m_name(name) {}

    constexpr std::string_view text() const { return m_name; }

    constexpr bool isKnown() const { return *m_name != '\0'; }

    friend constexpr bool operator==(FormatName one, FormatName other) { return one.text() == other.text(); }

private:
    const char* m_name = "";
};

} // namespace velmora
