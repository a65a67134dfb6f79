#include "tests/measure/TwelveSeconds.h"

#include "tests/support/Files.h"
#include "tests/support/Shell.h"

namespace velmora::test {

std::string encoded(std::string_view extension, std::string_view command) {
    return read(encodeAudio(freshFolder() / ("track." + std::string(extension)), command, twelveSeconds));
}

std::string encoded(std::string_view extension) {
    return read(encodeAudio(freshFolder() / ("track." + std::string(extension)), twelveSeconds));
}

double decodedSeconds(const std::string& bytes) {
    const fs::path folder = freshFolder();
    write(folder / "in", bytes);
    const std::string count =
        shell("ffmpeg -v quiet -i in -map 0:a:0 -f s16le -ar 44100 -ac 2 - | wc -c", folder);
    return std::stod(count) / 4 / 44'100;
}

} // namespace velmora::test
