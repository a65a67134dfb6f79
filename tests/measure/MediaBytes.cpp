#include "tests/measure/MediaBytes.h"

#include "system/RegularFile.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <span>

namespace velmora::test {

std::string le(std::uint64_t value, std::size_t count) {
    std::string bytes;
    for (std::size_t i = 0; i < count; ++i) {
        bytes += static_cast<char>(value >> 8 * i & 0xFF);
    }
    return bytes;
}

std::string be(std::uint64_t value, std::size_t count) {
    std::string bytes = le(value, count);
    std::ranges::reverse(bytes);
    return bytes;
}

std::string zeros(std::size_t count) {
    std::string bytes;
    bytes.resize(count);
    return bytes;
}

std::string times(std::size_t count, std::string_view part) {
    std::string bytes;
    bytes.reserve(count * part.size());
    while (count-- > 0) {
        bytes += part;
    }
    return bytes;
}

std::string riffChunk(std::string_view name, std::string_view content) {
    return std::string(name) + le(content.size(), 4) + std::string(content) + zeros(content.size() % 2);
}

std::string iffChunk(std::string_view name, std::string_view content) {
    return std::string(name) + be(content.size(), 4) + std::string(content) + zeros(content.size() % 2);
}

std::string mp4Box(std::string_view type, std::string_view content) {
    return be(content.size() + 8, 4) + std::string(type) + std::string(content);
}

MediaAnswer answerFor(std::string_view bytes, const std::string& name) {
    const std::span content(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
    return mediaDuration(sourceOf(content), name, {}).answer;
}

double secondsIn(const MediaAnswer& answer) {
    const Timed* const timed = std::get_if<Timed>(&answer);
    return timed == nullptr ? -1 : timed->timing.seconds;
}

double secondsOf(std::string_view bytes) {
    return secondsIn(answerFor(bytes));
}

MediaAnswer answerForFile(const std::filesystem::path& path, const std::stop_token& stop) {
    const std::optional<RegularFile> file = RegularFile::open(path);
    EXPECT_TRUE(file) << path;
    return file ? mediaDuration(sourceOf(*file), path, stop).answer : MediaAnswer(Unknown{});
}

} // namespace velmora::test
