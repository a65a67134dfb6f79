#include "fuzz/Harness.h"

#include "measure/bytes/ByteOrder.h"
#include "measure/bytes/GuardedReader.h"
#include "system/RegularFile.h"

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

namespace velmora::fuzz {

namespace {

using Answer = std::optional<Timing>;

/// A search may spend its budget and end with one read of up to 1 MiB; audio is read a few times.
std::int64_t maxReadBytes(std::int64_t size) {
    constexpr std::int64_t lastRead = 1 << 20;
    constexpr std::int64_t timesAudio = 64;
    return GuardedReader::searchBytes + lastRead + timesAudio * size;
}

/// What `timer` says of `source`, of which only the first `held` bytes can be read.
Answer timed(const Timer& timer, const ByteSource& source, std::int64_t held) {
    std::int64_t readBytes = 0;
    const ByteSource counted{source.size, [&](std::int64_t offset, std::span<std::uint8_t> buffer) {
                                 const auto got = source.readAt(offset, buffer);
                                 readBytes += static_cast<std::int64_t>(got.value_or(0));
                                 return got;
                             }};
    Answer answer = timer(counted);
    require(readBytes <= maxReadBytes(held), "reads are within the budget");
    return answer;
}

void requireSound(const Answer& answer, double maxSeconds) {
    if (answer) {
        require(std::isfinite(answer->seconds) && answer->seconds >= 0, "a length is finite and at least 0");
        require(answer->seconds <= maxSeconds, "a length is no longer than the bytes can hold");
        require(!answer->stated || std::isfinite(*answer->stated), "a stated length is finite");
        require(answer->frames >= 0, "a count of frames is at least 0");
    }
}

} // namespace

void require(bool holds, std::string_view promise) {
    if (!holds) {
        throw Violation("broken promise: " + std::string(promise));
    }
}

std::uint8_t Input::byte() {
    if (m_rest.empty()) {
        return 0;
    }
    const std::uint8_t first = m_rest.front();
    m_rest = m_rest.subspan(1);
    return first;
}

std::uint64_t Input::number() {
    std::array<std::uint8_t, sizeof(std::uint64_t)> bytes{};
    std::ranges::generate(bytes, [this] { return byte(); });
    return le64(bytes, 0);
}

std::string Input::text() {
    const auto end = std::ranges::find(m_rest, std::uint8_t{0});
    std::string text(m_rest.begin(), end);
    m_rest = m_rest.subspan(std::min(text.size() + 1, m_rest.size()));
    return text;
}

std::vector<std::string> textsOf(Bytes bytes, std::size_t most) {
    Input input(bytes);
    std::vector<std::string> texts;
    while (!input.isUsedUp() && texts.size() < most) {
        texts.push_back(input.text());
    }
    return texts;
}

Paths absolutePaths(Bytes bytes, std::size_t most) {
    Paths paths;
    for (const std::string& text : textsOf(bytes, most)) {
        paths.emplace_back("/" + text);
    }
    return paths;
}

MemoryFile::MemoryFile(Bytes bytes)
    : m_descriptor(::memfd_create("velmora-fuzz", MFD_CLOEXEC)) {
    const auto size = static_cast<ssize_t>(bytes.size());
    if (!m_descriptor || ::write(m_descriptor.get(), bytes.data(), bytes.size()) != size) {
        throw std::runtime_error("cannot make a file in memory");
    }
}

std::filesystem::path MemoryFile::path() const {
    return "/proc/self/fd/" + std::to_string(m_descriptor.get());
}

void checkTimer(const Timer& timer, Bytes bytes, double maxSeconds) {
    const ByteSource memory = sourceOf(bytes);
    const Answer answer = timed(timer, memory, memory.size);
    requireSound(answer, maxSeconds);
    require(timed(timer, memory, memory.size) == answer, "the answer is the same the second time");

    const MemoryFile file(bytes);
    const std::optional<RegularFile> opened = RegularFile::open(file.path());
    require(opened.has_value(), "a file in memory can be opened");
    require(timed(timer, sourceOf(*opened), memory.size) == answer, "the answer is the same by file");

    constexpr std::int64_t lostBytes = 1LL << 30;
    const ByteSource cutOff{memory.size + lostBytes, memory.readAt};
    requireSound(timed(timer, cutOff, memory.size), std::numeric_limits<double>::max());
}

} // namespace velmora::fuzz
