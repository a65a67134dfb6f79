#pragma once

// The order in which a file manager shows names, in the user's locale: case ignored, runs of digits by their
// value, accents only after letters. A slash counts, so that whole paths can be ordered as well.
//
//   2.wav < 10.wav,  a < B < c,  e < é < f

#include <unicode/uversion.h>

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

U_NAMESPACE_BEGIN
class Collator;
U_NAMESPACE_END

namespace velmora {

/// Makes keys whose order as bytes is that order. Names that differ in case alone have equal keys. One thread
/// at a time; several makers make the same keys.
class NaturalOrder {
public:
    NaturalOrder();
    NaturalOrder(const NaturalOrder&) = delete;
    NaturalOrder& operator=(const NaturalOrder&) = delete;
    ~NaturalOrder();

    /// Appends the key of `text` to `keys`. Bytes that are not UTF-8 count as U+FFFD. Nothing is appended
    /// where there is no collator.
    void append(std::string_view text, std::string& keys);

    /// Appends the part of that key which is compared first: letters and numbers, without accents. Other than
    /// whole keys, these parts can be put together: that of "Album/01.wav" is that of "Album/" and then that
    /// of "01.wav". Where two are equal, the whole keys decide.
    void appendLetters(std::string_view path, std::string& keys);

private:
    std::string_view keyOf(std::string_view text);

    std::unique_ptr<icu::Collator> m_collator;
    std::vector<std::uint8_t> m_buffer; // holds the last key
};

} // namespace velmora
