// Controls how the allocator handles large blocks.
#pragma once

namespace korvane {

/// From now on, blocks of 256 KB and more are returned to the system when they are freed. By default, after its first large block
/// the allocator keeps twice that size for ever. Call it at the start of main.
void ReturnLargeBlocks();

}  // namespace korvane
