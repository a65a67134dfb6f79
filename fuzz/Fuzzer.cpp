// The program that libFuzzer drives: `velmora-fuzz --target=NAME`, then what libFuzzer takes. `--list` writes
// the names.

#include "fuzz/Targets.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string_view>

namespace {

using velmora::fuzz::Target;

Target chosen; // by LLVMFuzzerInitialize, before the first input

[[noreturn]] void list() {
    for (const Target& target : velmora::fuzz::allTargets()) {
        std::puts(target.name.c_str());
    }
    std::exit(EXIT_SUCCESS);
}

void choose(std::string_view name) {
    const std::vector<Target> targets = velmora::fuzz::allTargets();
    const auto found = std::ranges::find(targets, name, &Target::name);
    if (found == targets.end()) {
        std::fputs("velmora-fuzz: name a target with --target=NAME; --list tells them\n", stderr);
        std::exit(EXIT_FAILURE);
    }
    chosen = *found;
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int* count, char*** arguments) {
    constexpr std::string_view option = "--target=";
    std::string_view name;
    for (const std::string_view argument : std::span(*arguments, static_cast<std::size_t>(*count))) {
        if (argument == "--list") {
            list();
        }
        if (argument.starts_with(option)) {
            name = argument.substr(option.size());
        }
    }
    choose(name);
    return 0;
}

/// Nothing passes: a `Violation` ends the program, and libFuzzer keeps the input.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) noexcept {
    chosen.run({data, size});
    return 0;
}
