// What every fuzz target stands on: the entry that libFuzzer calls, and a check that ends the run and keeps the input that broke
// it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string_view>

namespace korvane {

/// One input. Everything it does must be over when it returns.
void Fuzz(std::string_view input);

/// What must hold for any input; `what` says it in words. An exception that leaves Fuzz ends the run in the same way.
inline void Require(bool holds, const char* what) {
    if (holds) return;
    std::fprintf(stderr, "fuzz: not so: %s\n", what);
    std::abort();
}

/// Takes the first line, without its line feed, from `input`.
inline std::string_view TakeLine(std::string_view& input) {
    const std::string_view line = input.substr(0, input.find('\n'));
    input.remove_prefix(line.size() < input.size() ? line.size() + 1 : input.size());
    return line;
}

}  // namespace korvane
