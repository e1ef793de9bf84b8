// Memory functions, and the heap that is only ever given out.
#include "memory.h"

#include "kernel.h"

/// Set by the start-up code.
u32 heapNext;
u32 heapEnd;

void* memcpy(void* destination, const void* source, u32 bytes) {
    u8* to = destination;
    const u8* from = source;
    if ((((u32)to | (u32)from) & 15) == 0 && bytes >= 16) {
        u32 whole = bytes & 0xFFFFFFF0;
        copyQuadwords(to, from, bytes >> 4);
        to += whole;
        from += whole;
        bytes -= whole;
    }
    for (; bytes != 0; bytes--)
        *to++ = *from++;
    return destination;
}

void* memmove(void* destination, const void* source, u32 bytes) {
    if ((u32)destination - (u32)source >= bytes)
        return memcpy(destination, source, bytes);  // forwards, from below or from elsewhere
    u8* to = destination;
    const u8* from = source;
    while (bytes-- != 0)
        to[bytes] = from[bytes];
    return destination;
}

s32 memcmp(const void* a, const void* b, u32 bytes) {
    const u8* left = a;
    const u8* right = b;
    for (; bytes != 0; bytes--, left++, right++)
        if (*left != *right)
            return *left - *right;
    return 0;
}

void* memset(void* destination, s32 value, u32 bytes) {
    u8* to = destination;
    for (; bytes != 0 && ((u32)to & 15) != 0; bytes--)
        *to++ = (u8)value;
    if (bytes >= 16) {
        u64 pattern = (u8)value;
        pattern |= pattern << 8;
        pattern |= pattern << 16;
        pattern |= pattern << 32;
        fillQuadwords(to, pattern, bytes >> 4);
        to += bytes & 0xFFFFFFF0;
        bytes &= 15;
    }
    for (; bytes != 0; bytes--)
        *to++ = (u8)value;
    return destination;
}

void* allocate(u32 bytes) {
    u32 room = (bytes + 15) & 0xFFFFFFF0;
    u32 block = (heapNext + 15) & 0xFFFFFFF0;
    if (room < bytes || block > heapEnd || room > heapEnd - block)
        return 0;
    heapNext = block + room;
    return (void*)block;
}
