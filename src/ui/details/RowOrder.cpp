#include "ui/details/RowOrder.h"

#include "system/NaturalOrder.h"
#include "system/UnicodeCase.h"
#include "ui/details/Rows.h"

#include <algorithm>
#include <cstddef>
#include <numeric>
#include <string_view>
#include <utility>

namespace velmora {

namespace {

/// After so many rows it is looked whether to stop.
constexpr std::size_t stopStep = 1024;

bool isToStop(std::size_t count, const std::stop_token& stop) {
    return count % stopStep == 0 && stop.stop_requested();
}

std::optional<RowNumbers> found(const Rows& rows, const std::string& search, const std::stop_token& stop) {
    RowNumbers numbers;
    if (search.empty()) {
        numbers.resize(rows.size());
        std::iota(numbers.begin(), numbers.end(), 0U);
        return numbers;
    }
    const std::string wanted = lowerCased(search);
    for (std::size_t row = 0; row < rows.size(); ++row) {
        if (isToStop(row, stop)) {
            return std::nullopt;
        }
        if (lowerCased(rows.name(row)).find(wanted) != std::string::npos) {
            numbers.push_back(static_cast<std::uint32_t>(row));
        }
    }
    return numbers;
}

/// Sorts `numbers` by `keys`, which stand in the same order.
template <typename Key>
void sort(RowNumbers& numbers, const std::vector<Key>& keys, bool descending) {
    std::vector<std::uint32_t> places(numbers.size());
    std::iota(places.begin(), places.end(), 0U);
    std::ranges::stable_sort(places, [&](std::uint32_t a, std::uint32_t b) {
        return descending ? keys[b] < keys[a] : keys[a] < keys[b];
    });
    for (std::uint32_t& place : places) {
        place = numbers[place];
    }
    numbers = std::move(places);
}

bool sortByNumber(RowNumbers& numbers, const Rows& rows, const RowOrder& order, const std::stop_token& stop) {
    std::vector<double> keys;
    keys.reserve(numbers.size());
    for (const std::uint32_t row : numbers) {
        if (isToStop(keys.size(), stop)) {
            return false;
        }
        keys.push_back(rows.number(row, static_cast<std::size_t>(order.column)));
    }
    sort(numbers, keys, order.descending);
    return true;
}

/// Where a key stands among others.
struct Place {
    std::size_t begin = 0;
    std::size_t length = 0;
};

bool sortByWord(RowNumbers& numbers, const Rows& rows, const RowOrder& order, const std::stop_token& stop) {
    NaturalOrder naturalOrder;
    std::string bytes; // of all keys, one after the other
    std::vector<Place> places;
    places.reserve(numbers.size());
    std::string last;
    for (const std::uint32_t row : numbers) {
        if (isToStop(places.size(), stop)) {
            return false;
        }
        std::string word = rows.word(row, static_cast<std::size_t>(order.column));
        if (!places.empty() && word == last) { // a folder's files, say
            places.push_back(places.back());
            continue;
        }
        const std::size_t begin = bytes.size();
        naturalOrder.append(word, bytes);
        places.push_back({begin, bytes.size() - begin});
        last = std::move(word);
    }
    std::vector<std::string_view> keys(places.size());
    std::ranges::transform(places, keys.begin(), [&](const Place& place) {
        return std::string_view(bytes).substr(place.begin, place.length);
    });
    sort(numbers, keys, order.descending);
    return true;
}

} // namespace

std::optional<RowNumbers> ordered(const Rows& rows, const RowOrder& order, const std::stop_token& stop) {
    std::optional<RowNumbers> numbers = found(rows, order.search, stop);
    if (!numbers || order.column < 0) {
        return numbers;
    }
    const bool byNumber = rows.columns()[static_cast<std::size_t>(order.column)].isNumber;
    const bool complete =
        byNumber ? sortByNumber(*numbers, rows, order, stop) : sortByWord(*numbers, rows, order, stop);
    return complete ? std::move(numbers) : std::nullopt;
}

} // namespace velmora
