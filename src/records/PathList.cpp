#include "records/PathList.h"

#include <algorithm>
#include <utility>

namespace velmora {

namespace {

void append(const Paths& paths, std::string& names) {
    std::size_t size = names.size();
    for (const std::filesystem::path& path : paths) {
        size += path.native().size() + 1;
    }
    names.reserve(size);
    for (const std::filesystem::path& path : paths) {
        names += path.native();
        names += '\0';
    }
}

} // namespace

PathList::Iterator::Iterator(std::string_view names, std::string_view more)
    : m_names(names.empty() ? more : names)
    , m_more(names.empty() ? std::string_view() : more) {}

PathList::value_type PathList::Iterator::operator*() const {
    return m_names.substr(0, m_names.find('\0'));
}

PathList::Iterator& PathList::Iterator::operator++() {
    m_names.remove_prefix(m_names.find('\0') + 1);
    if (m_names.empty()) {
        m_names = std::exchange(m_more, {});
    }
    return *this;
}

PathList::Iterator PathList::Iterator::operator++(int) {
    return std::exchange(*this, std::next(*this));
}

bool PathList::Iterator::operator==(const Iterator& other) const {
    return m_names.size() == other.m_names.size() && m_more.size() == other.m_more.size();
}

PathList::PathList(const Paths& paths)
    : m_size(paths.size()) {
    std::string names;
    append(paths, names);
    m_names = std::make_shared<const std::string>(std::move(names));
}

PathList::PathList(std::initializer_list<std::filesystem::path> paths)
    : PathList(Paths(paths)) {}

PathList PathList::with(const Paths& further) const {
    PathList longer = *this;
    append(further, longer.m_more);
    longer.m_size += further.size();
    return longer;
}

bool operator==(const PathList& one, const PathList& other) {
    return one.m_size == other.m_size && std::equal(one.begin(), PathList::end(), other.begin());
}

} // namespace velmora
