// The guarded reader over a file that is shorter than it claims to be and shrinks while it is read.

#include "fuzz/Targets.h"
#include "measure/bytes/GuardedReader.h"
#include "measure/bytes/SlidingWindow.h"
#include "measure/bytes/TailSearch.h"

#include <algorithm>

namespace velmora::fuzz {

namespace {

/// Nothing but bytes of the file comes out, each from its place.
void requireFromFile(Bytes got, Bytes file, std::int64_t offset) {
    if (got.empty()) {
        return;
    }
    require(offset >= 0 && offset <= std::ssize(file) - std::ssize(got), "bytes lie within the file");
    require(std::ranges::equal(got, file.subspan(static_cast<std::size_t>(offset), got.size())),
            "bytes come from their place");
}

/// One shrinking file and its readers. The input says what is done next.
class Trial {
public:
    explicit Trial(Bytes bytes)
        : m_input(bytes)
        , m_claimed(static_cast<std::int64_t>(m_input.number() >> (m_input.byte() % 64 | 1)))
        , m_file(bytes)
        , m_held(bytes.size())
        , m_reader({m_claimed,
                    [this](std::int64_t offset, std::span<std::uint8_t> buffer) {
                        const auto got = sourceOf(m_file.first(m_held)).readAt(offset, buffer);
                        m_readBytes += static_cast<std::int64_t>(got.value_or(0));
                        return got;
                    }},
                   {})
        , m_window(m_reader, m_claimed) {}

    void run() {
        constexpr int maxSteps = 64; // a step may read a mebibyte
        for (int steps = 0; steps < maxSteps && !m_input.isUsedUp(); ++steps) {
            step();
        }
    }

private:
    void step() {
        const std::uint8_t what = m_input.byte();
        const std::int64_t offset = m_input.byte() << 8 | m_input.byte();
        const std::size_t count = std::size_t{m_input.byte()} << (m_input.byte() % 8);
        switch (what % 8) {
        case 0:
            m_held -= std::min(count, m_held);
            break;
        case 1:
            m_reader.renew();
            m_readBytes = 0;
            break;
        case 2:
            search(offset, count);
            break;
        case 3:
            requireFromFile(m_window.from(offset, count), m_file, offset);
            m_readBytes = 0; // audio costs nothing
            break;
        case 4:
            searchEnd(offset, count);
            break;
        default:
            header(offset, count);
        }
        require(m_reader.size() == m_claimed, "the size is what it was");
    }

    void header(std::int64_t offset, std::size_t count) {
        const Bytes got = m_reader.header(offset, count);
        require(got.empty() || got.size() == count, "a header is whole or none");
        requireFromFile(got, m_file, offset);
        requireWithinBudget(GuardedReader::windowBytes);
    }

    void search(std::int64_t offset, std::size_t count) {
        std::vector<std::uint8_t> buffer(count);
        const std::size_t got = m_reader.search(offset, buffer);
        require(got <= count, "no more is read than fits");
        requireFromFile(Bytes(buffer).first(got), m_file, offset);
        requireWithinBudget(count);
    }

    void searchEnd(std::int64_t start, std::size_t count) {
        if (start > m_claimed) {
            return;
        }
        const auto look = [&](Bytes got, std::int64_t offset) -> std::optional<int> {
            requireFromFile(got, m_file, offset);
            return std::nullopt;
        };
        searchTail(m_reader, start, static_cast<std::int64_t>(count) + 1, look);
        requireWithinBudget(std::size_t{1} << 20);
    }

    void requireWithinBudget(std::size_t lastRead) {
        require(m_readBytes <= GuardedReader::searchBytes + static_cast<std::int64_t>(lastRead),
                "a search ends with its budget");
    }

    Input m_input;
    std::int64_t m_claimed;
    Bytes m_file;
    std::size_t m_held;
    std::int64_t m_readBytes = 0; ///< since the budget began, at least in search
    GuardedReader m_reader;
    SlidingWindow m_window;
};

} // namespace

void fuzzGuardedReader(Bytes bytes) {
    Trial(bytes).run();
}

} // namespace velmora::fuzz
