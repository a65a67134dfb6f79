#include "measure/check/ForeignFormat.h"

#include "system/FileName.h"

#include <algorithm>
#include <array>
#include <span>

namespace velmora {

namespace {

using Names = std::span<const std::string_view>;

constexpr std::array<std::string_view, 3> wave = {"WAV", "RF64", "BW64"};
constexpr std::array<std::string_view, 2> aiff = {"AIFF", "AIFF-C"};
constexpr std::array<std::string_view, 1> au = {"AU"};
constexpr std::array<std::string_view, 1> caf = {"CAF"};
constexpr std::array<std::string_view, 1> flac = {"FLAC"};
constexpr std::array<std::string_view, 2> alac = {"MP4", "CAF"};
constexpr std::array<std::string_view, 1> mpeg = {mpegFrames};
constexpr std::array<std::string_view, 1> mp4 = {"MP4"};
constexpr std::array<std::string_view, 2> aac = {adtsFrames, "MP4"};
constexpr std::array<std::string_view, 1> ogg = {"Ogg"};
constexpr std::array<std::string_view, 1> asf = {"ASF"};
constexpr std::array<std::string_view, 1> ape = {"Monkey's Audio"};
constexpr std::array<std::string_view, 1> wavPack = {"WavPack"};
constexpr std::array<std::string_view, 1> dsf = {"DSF"};
constexpr std::array<std::string_view, 1> dsdiff = {"DSDIFF"};
constexpr std::array<std::string_view, 1> amr = {"AMR"};
constexpr std::array<std::string_view, 2> mobile = {"MP4", "AMR"};
constexpr std::array<std::string_view, 1> matroska = {"Matroska"};
constexpr std::array<std::string_view, 2> real = {"RealMedia", "RealAudio"};
constexpr std::array<std::string_view, 2> musepack = {"Musepack SV8", "Musepack SV7"};
constexpr std::array<std::string_view, 1> audible = {"Audible"};
constexpr std::array<std::string_view, 1> voc = {"VOC"};
constexpr std::array<std::string_view, 1> wave64 = {"Wave64"};

struct Row {
    std::string_view extension; ///< in lower case, without the dot
    Names formats;
};

// Without .sd2, whose content is bare samples and may begin with anything.
constexpr auto rows = std::to_array<Row>({
    {"wav", wave},   {"wave", wave},    {"bwf", wave},   {"rf64", wave}, {"w64", wave64}, {"aif", aiff},
    {"aiff", aiff},  {"aifc", aiff},    {"au", au},      {"snd", au},    {"caf", caf},    {"flac", flac},
    {"alac", alac},  {"mp3", mpeg},     {"mp2", mpeg},   {"m4a", mp4},   {"m4b", mp4},    {"m4r", mp4},
    {"mp4", mp4},    {"aac", aac},      {"adts", aac},   {"ogg", ogg},   {"oga", ogg},    {"opus", ogg},
    {"ogx", ogg},    {"spx", ogg},      {"wma", asf},    {"asf", asf},   {"wmv", asf},    {"ape", ape},
    {"wv", wavPack}, {"dsf", dsf},      {"dff", dsdiff}, {"amr", amr},   {"3ga", mobile}, {"mka", matroska},
    {"ra", real},    {"mpc", musepack}, {"aa", audible}, {"aax", mp4},   {"voc", voc},
});

} // namespace

bool isForeign(const std::filesystem::path& name, std::string_view format) {
    const auto* const row = std::ranges::find(rows, classifyingExtension(name), &Row::extension);
    return row != rows.end() && std::ranges::find(row->formats, format) == row->formats.end();
}

} // namespace velmora
