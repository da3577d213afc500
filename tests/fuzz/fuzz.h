// What the fuzz targets stand on: a function each, which test_notify calls with the seeds, and a check of what must hold for any input.
#pragma once

#include <stdexcept>
#include <string_view>

namespace korvane {

// One input. Everything that it does is over when it returns.
void FuzzIni(std::string_view input);
void FuzzTexts(std::string_view input);
void FuzzSmtp(std::string_view input);
void FuzzTcp(std::string_view input);

/// An exception that leaves a target ends the run of libFuzzer, which keeps the input.
inline void Require(bool holds, const char* what) {
    if (!holds) throw std::logic_error(what);
}

/// Takes what stands before the first `end`, or all, from `input`, with the `end`.
inline std::string_view TakeUpTo(char end, std::string_view& input) {
    const std::string_view taken = input.substr(0, input.find(end));
    input.remove_prefix(taken.size() < input.size() ? taken.size() + 1 : taken.size());
    return taken;
}

}  // namespace korvane
