// malloc and free. Free blocks are in a list sorted by address; adjacent ones are merged.
#include "kernel.h"
#include "memory.h"

#include <stdlib.h>

/// The header of a block. The link is for free blocks.
typedef struct Block {
    u32 bytes;  ///< including this header
    struct Block* next;
} __attribute__((aligned(16))) Block;

static Block* firstFree;

static Block* endOf(Block* block) { return (Block*)((u8*)block + block->bytes); }

void* malloc(size_t bytes) {
    u32 needed = (bytes + sizeof(Block) + 15) & ~15u;
    if (needed < bytes)
        return 0;
    for (Block** link = &firstFree; *link != 0; link = &(*link)->next) {
        Block* block = *link;
        if (block->bytes < needed)
            continue;
        if (block->bytes - needed < 2 * sizeof(Block)) {
            *link = block->next;
        } else {
            block->bytes -= needed;
            block = endOf(block);
            block->bytes = needed;
        }
        return block + 1;
    }
    Block* block = allocate(needed);
    if (block == 0)
        return 0;
    block->bytes = needed;
    return block + 1;
}

void free(void* memory) {
    if (memory == 0)
        return;
    Block* block = (Block*)memory - 1;
    Block* before = 0;
    Block* after = firstFree;
    for (; after != 0 && after < block; after = after->next)
        before = after;
    block->next = after;
    if (after != 0 && endOf(block) == after) {
        block->bytes += after->bytes;
        block->next = after->next;
    }
    if (before == 0) {
        firstFree = block;
    } else if (endOf(before) == block) {
        before->bytes += block->bytes;
        before->next = block->next;
    } else {
        before->next = block;
    }
}

void* calloc(size_t count, size_t bytes) {
    u64 all = (u64)count * bytes;
    void* memory = all >> 32 != 0 ? 0 : malloc((size_t)all);
    return memory == 0 ? 0 : memset(memory, 0, (size_t)all);
}

void* realloc(void* memory, size_t bytes) {
    u32 old = memory == 0 ? 0 : ((Block*)memory - 1)->bytes - sizeof(Block);
    if (old != 0 && bytes <= old)
        return memory;
    void* larger = malloc(bytes);
    if (larger != 0 && memory != 0) {
        memcpy(larger, memory, old);
        free(memory);
    }
    return larger;
}
