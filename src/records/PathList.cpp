#include "records/PathList.h"

#include <algorithm>
#include <utility>

namespace velmora {

namespace {

constexpr std::size_t goesOn = 0x80;
constexpr int bitsOfByte = 7;

void appendNumber(std::size_t number, std::string& bytes) {
    for (; number >= goesOn; number >>= bitsOfByte) {
        bytes += static_cast<char>(number % goesOn | goesOn);
    }
    bytes += static_cast<char>(number);
}

std::size_t takeNumber(std::string_view& bytes) {
    std::size_t number = 0;
    for (int shift = 0;; shift += bitsOfByte) {
        const auto byte = static_cast<unsigned char>(bytes.front());
        bytes.remove_prefix(1);
        number |= byte % goesOn << shift;
        if (byte < goesOn) {
            return number;
        }
    }
}

/// Appends `path`, which comes after `last`, to `names`.
void append(std::string_view path, std::string_view last, std::string& names) {
    const auto differing = std::mismatch(path.begin(), path.end(), last.begin(), last.end()).first;
    const auto shared = static_cast<std::size_t>(differing - path.begin());
    appendNumber(shared, names);
    names += path.substr(shared);
    names += '\0';
}

} // namespace

PathList::Iterator::Iterator(std::string_view names, std::string_view more)
    : m_names(names)
    , m_more(more) {
    readName();
}

void PathList::Iterator::readName() {
    if (m_names.empty()) {
        m_names = std::exchange(m_more, {});
    }
    m_isAtEnd = m_names.empty();
    if (!m_isAtEnd) {
        m_name.resize(takeNumber(m_names));
        const std::string_view rest = m_names.substr(0, m_names.find('\0'));
        m_name += rest;
        m_names.remove_prefix(rest.size() + 1);
    }
}

PathList::Iterator& PathList::Iterator::operator++() {
    readName();
    return *this;
}

PathList::Iterator PathList::Iterator::operator++(int) {
    return std::exchange(*this, std::next(*this));
}

bool PathList::Iterator::operator==(const Iterator& other) const {
    return m_isAtEnd == other.m_isAtEnd && m_names.size() == other.m_names.size() &&
           m_more.size() == other.m_more.size();
}

PathList::PathList(const Paths& paths) {
    PathListMaker maker;
    for (const std::filesystem::path& path : paths) {
        maker.add(path.native());
    }
    *this = maker.list();
}

PathList::PathList(std::initializer_list<std::filesystem::path> paths)
    : PathList(Paths(paths)) {}

PathList PathList::with(const Paths& further) const {
    PathList longer = *this;
    for (const std::filesystem::path& path : further) {
        append(path.native(), "", longer.m_more);
    }
    longer.m_size += further.size();
    return longer;
}

bool operator==(const PathList& one, const PathList& other) {
    return one.m_size == other.m_size && std::equal(one.begin(), PathList::end(), other.begin());
}

void PathListMaker::add(std::string_view path) {
    append(path, m_last, m_names);
    m_last = path;
    m_size += 1;
}

PathList PathListMaker::list() {
    PathList made;
    m_names.shrink_to_fit();
    made.m_names = std::make_shared<const std::string>(std::exchange(m_names, {}));
    made.m_size = std::exchange(m_size, 0);
    m_last.clear();
    return made;
}

} // namespace velmora
