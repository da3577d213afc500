// The entry that libFuzzer calls. KORVANE_TARGET is the function of the target.
#include "fuzz/fuzz.h"

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    korvane::KORVANE_TARGET({reinterpret_cast<const char*>(data), size});
    return 0;
}
