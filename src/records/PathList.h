#pragma once

// Many paths that are kept for later. A std::filesystem::path holds each of its components as a path of its
// own, some 500 bytes for one of six components; here each is the bytes in which it differs from the one
// before, some 25 in a folder of tracks. Copies share them.

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

        value_type operator*() const { return m_name; }

        /// The same without making a path.
        const std::string& bytes() const { return m_name; }

        Iterator& operator++();
        Iterator operator++(int);

        /// Of iterators of the same list.
        bool operator==(const Iterator& other) const;

    private:
        void readName();

        std::string_view m_names; // after the one that it stands at
        std::string_view m_more;
        std::string m_name;
        bool m_isAtEnd = true;
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

    /// All at once, for where they must be.
    Paths paths() const { return {begin(), end()}; }

    friend bool operator==(const PathList& one, const PathList& other);

private:
    friend class PathListMaker;

    // Paths one after the other: how many bytes it shares with the one before (7 bits a byte, the lowest
    // first, the highest bit set in all but the last), the others, a NUL, which no path holds.
    std::shared_ptr<const std::string> m_names; // shared with other lists; null: none
    std::string m_more;                         // after those, each as if it were the first
    std::size_t m_size = 0;
};

/// Makes a list of paths that come one by one.
class PathListMaker {
public:
    void add(std::string_view path);

    /// All that were added; none remain.
    PathList list();

private:
    std::string m_names;
    std::string m_last;
    std::size_t m_size = 0;
};

} // namespace velmora
