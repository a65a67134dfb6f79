#pragma once

// A session bus that starts no service of the machine it runs on.

#include <filesystem>
#include <string>

namespace velmora::test {

/// What dbus-daemon is configured with (dbus-daemon(1)); its socket lies in `folder`.
inline std::string busConfiguration(const std::filesystem::path& folder) {
    return "<busconfig>\n"
           "  <type>session</type>\n"
           "  <listen>unix:dir=" +
           folder.native() +
           "</listen>\n"
           "  <policy context=\"default\">\n"
           "    <allow send_destination=\"*\" eavesdrop=\"true\"/>\n"
           "    <allow eavesdrop=\"true\"/>\n"
           "    <allow own=\"*\"/>\n"
           "  </policy>\n"
           "</busconfig>\n";
}

} // namespace velmora::test
