#include "system/NaturalOrder.h"

#include <unicode/coll.h>

#include <cstdlib>

namespace velmora {

namespace {

/// The locale in which the user wants things sorted: root where the environment names none, or a technical
/// one.
icu::Locale sortingLocale() {
    for (const char* variable : {"LC_ALL", "LC_COLLATE", "LANG"}) {
        const char* value = std::getenv(variable);
        if (value == nullptr || *value == '\0') {
            continue;
        }
        const std::string name = std::string(value).substr(0, std::string_view(value).find_first_of(".@"));
        return name == "C" || name == "POSIX" ? icu::Locale::getRoot()
                                              : icu::Locale::createCanonical(name.c_str());
    }
    return icu::Locale::getRoot();
}

/// Stands in a key between letters, accents and case, and nowhere else.
constexpr char levelEnd = '\x01';

} // namespace

NaturalOrder::NaturalOrder()
    : m_buffer(1024) {
    UErrorCode status = U_ZERO_ERROR;
    m_collator.reset(icu::Collator::createInstance(sortingLocale(), status));
    if (U_FAILURE(status) == 0) {
        m_collator->setStrength(icu::Collator::SECONDARY); // accents count, case does not
        m_collator->setAttribute(UCOL_NUMERIC_COLLATION, UCOL_ON, status);
        m_collator->setAttribute(UCOL_ALTERNATE_HANDLING, UCOL_NON_IGNORABLE, status); // a slash counts
    }
    if (U_FAILURE(status) != 0) {
        m_collator.reset();
    }
}

NaturalOrder::~NaturalOrder() = default;

void NaturalOrder::append(std::string_view text, std::string& keys) {
    keys += keyOf(text);
}

void NaturalOrder::appendLetters(std::string_view path, std::string& keys) {
    const std::string_view key = keyOf(path);
    keys += key.substr(0, key.find(levelEnd));
}

std::string_view NaturalOrder::keyOf(std::string_view text) {
    if (!m_collator) {
        return {};
    }
    const icu::UnicodeString unicode =
        icu::UnicodeString::fromUTF8({text.data(), static_cast<std::int32_t>(text.size())});
    const auto make = [&] {
        return m_collator->getSortKey(unicode, m_buffer.data(), static_cast<int32_t>(m_buffer.size()));
    };
    std::int32_t length = make();
    if (length > static_cast<std::int32_t>(m_buffer.size())) {
        m_buffer.resize(static_cast<std::size_t>(length));
        length = make();
    }
    return {reinterpret_cast<const char*>(m_buffer.data()), static_cast<std::size_t>(length)};
}

} // namespace velmora
