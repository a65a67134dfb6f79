#include "tests/measure/FlacBytes.h"

#include "tests/measure/MediaBytes.h"

namespace velmora::test {

using namespace std::string_literals;

std::uint64_t flacChecksum(const std::string& bytes, unsigned bits, std::uint64_t polynomial) {
    std::uint64_t sum = 0;
    for (const char byte : bytes) {
        sum ^= static_cast<std::uint64_t>(static_cast<unsigned char>(byte)) << (bits - 8);
        for (int bit = 0; bit < 8; ++bit) {
            sum = (sum << 1) ^ (((sum >> (bits - 1)) & 1) != 0 ? polynomial : 0);
        }
        sum &= (1ULL << bits) - 1;
    }
    return sum;
}

std::string flacFrame(std::uint64_t number, std::uint64_t samples, FlacBlocks blocks, std::uint64_t rate) {
    const std::string coded = be(0xC0 | number >> 6, 1) + be(0x80 | (number & 0x3F), 1);
    const std::string header = (blocks == FlacBlocks::ofFixedSize ? "\xFF\xF8"s : "\xFF\xF9"s) +
                               be(0x70 | rate, 1) + be(0x18, 1) + coded + be(samples - 1, 2);
    const std::string bytes = header + be(flacChecksum(header, 8, 0x07), 1) + times(40, "x");
    return bytes + be(flacChecksum(bytes, 16, 0x8005), 2);
}

} // namespace velmora::test
