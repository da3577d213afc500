// How the program's allocator treats large blocks.
#pragma once

namespace korvane {

/// From now on, blocks of 256 KB and more go back to the system when they are freed. By default the allocator learns from the
/// first large answer to keep twice its size for ever. Call it at the start of main.
void ReturnLargeBlocks();

}  // namespace korvane
