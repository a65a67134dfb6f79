#pragma once

// A session bus that starts no service of the machine it runs on.

#include <filesystem>
#include <string>

namespace velmora::test {

/// What dbus-daemon is configured with (dbus-daemon(1)); its socket lies in `folder`, the service files it
/// reads in a folder "services" there, if any.
inline std::string busConfiguration(const std::filesystem::path& folder) {
    return "<busconfig>\n"
           "  <type>session</type>\n"
           "  <listen>unix:dir=" +
           folder.native() +
           "</listen>\n"
           "  <servicedir>" +
           folder.native() +
           "/services</servicedir>\n"
           "  <policy context=\"default\">\n"
           "    <allow send_destination=\"*\" eavesdrop=\"true\"/>\n"
           "    <allow eavesdrop=\"true\"/>\n"
           "    <allow own=\"*\"/>\n"
           "  </policy>\n"
           "</busconfig>\n";
}

} // namespace velmora::test
