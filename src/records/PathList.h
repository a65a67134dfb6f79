#pragma once

// Many paths that are kept for later. A std::filesystem::path holds each of its components as a path of its
// own, some 500 bytes for one of six components; here it is its bytes. Copies share them.

#include "system/Paths.h"

#include <cstddef>
#include <filesystem>
#include <initializer_list>
#include <iterator>
#include <memory>
#include <string>
#include <string_view>

namespace velmora {

class PathList {
public:
    /// Makes each path as it gets to it.
    class Iterator {
    public:
        using iterator_category = std::input_iterator_tag;
        using value_type = std::filesystem::path;
        using difference_type = std::ptrdiff_t;
        using pointer = void;
        using reference = value_type;

        Iterator() = default;
        Iterator(std::string_view names, std::string_view more);

        value_type operator*() const;
        Iterator& operator++();
        Iterator operator++(int);

        /// Of iterators of the same list.
        bool operator==(const Iterator& other) const;

    private:
        std::string_view m_names;
        std::string_view m_more;
    };

    using value_type = std::filesystem::path;
    using iterator = Iterator;
    using const_iterator = Iterator;

    PathList() = default;
    PathList(const Paths& paths); // NOLINT(google-explicit-constructor): the same in another form
    PathList(std::initializer_list<std::filesystem::path> paths);

    /// This list with further paths at its end.
    PathList with(const Paths& further) const;

    std::size_t size() const { return m_size; }

    bool empty() const { return m_size == 0; }

    /// The first; there must be one.
    std::filesystem::path front() const { return *begin(); }

    Iterator begin() const { return {m_names ? *m_names : std::string_view(), m_more}; }

    static Iterator end() { return {}; }

    friend bool operator==(const PathList& one, const PathList& other);

private:
    // Paths one after the other, a NUL after each, which no path holds.
    std::shared_ptr<const std::string> m_names; // shared with other lists; null: none
    std::string m_more;                         // after those
    std::size_t m_size = 0;
};

} // namespace velmora
