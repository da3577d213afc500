#include "platform/linux/linux_memory.h"

#include <malloc.h>

namespace korvane {
namespace {

constexpr int kLargeBlock = 256 * 1024;

}  // namespace

void ReturnLargeBlocks() {
#ifdef M_MMAP_THRESHOLD  // glibc only; other C libraries return large blocks anyway
    mallopt(M_MMAP_THRESHOLD, kLargeBlock);
    mallopt(M_TRIM_THRESHOLD, kLargeBlock);
#endif
}

}  // namespace korvane
