#pragma once

// What one tool may do, as the program that wants it started says it on the command line of velmora-confine:
//
//   velmora-confine --parent 4711 --reach system --read /tmp/a.zip --write /tmp/out
//                   --memory 4294967296 --processor 3600 --file 1000000 -- /usr/bin/unzip -qq …

#include <cstdint>
#include <filesystem>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace velmora {

/// How much of the system a tool may read and execute.
enum class Reach : bool {
    programs, ///< programs and libraries
    system,   ///< their data, too
};

/// What is not named here is refused: other files, the network, other processes.
struct Rules {
    Reach reach = Reach::system;
    std::filesystem::path readable = {}; ///< the one file of the user's that the tool may read; empty: none
    std::filesystem::path writable = {}; ///< the folder that is the tool's to write to; empty: none
    std::uint64_t memoryBytes = std::uint64_t{4} << 30; ///< address space of each process
    std::uint64_t processorSeconds = 3600;              ///< of each process
    std::uint64_t fileBytes = std::uint64_t{1} << 62;   ///< of each file it writes

    bool operator==(const Rules&) const = default;
};

/// A command line of velmora-confine.
struct ConfinedCommand {
    int parent = 0; ///< the process that must be alive
    Rules rules;
    std::vector<std::string> tool; ///< its absolute path and its arguments

    bool operator==(const ConfinedCommand&) const = default;
};

/// The arguments for velmora-confine, without the program's name.
std::vector<std::string> argumentsFor(const ConfinedCommand& command);

/// Reads what `argumentsFor` made. Absent for anything else: what is not understood is not started.
std::optional<ConfinedCommand> commandFrom(std::span<const std::string> arguments);

} // namespace velmora
