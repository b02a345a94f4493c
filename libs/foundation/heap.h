// What the pools share with the heap: pool chunks from the small blocks' stretch.
#pragma once

namespace fl {

// A chunk of SmallBlocks::chunk_bytes aligned to its size, or null; free_heap_chunk takes it back.
void *allocate_heap_chunk();
void free_heap_chunk(void *chunk);

} // namespace fl
