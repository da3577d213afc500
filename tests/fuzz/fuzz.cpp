// The entry that libFuzzer calls.
#include "fuzz/fuzz.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    korvane::Fuzz({reinterpret_cast<const char*>(data), size});
    return 0;
}
