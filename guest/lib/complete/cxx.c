// The C++ run-time library. Destructors of static objects never run, since a program does not end.
#include "types.h"

#include <stdlib.h>

void* newObject(u32 bytes) __asm__("_Znwj");
void* newArray(u32 bytes) __asm__("_Znaj");
void deleteObject(void* object) __asm__("_ZdlPv");
void deleteArray(void* array) __asm__("_ZdaPv");
void deleteSized(void* object, u32 bytes) __asm__("_ZdlPvj");
void deleteSizedArray(void* array, u32 bytes) __asm__("_ZdaPvj");

/// There are no exceptions: the program ends if there is no memory.
void* newObject(u32 bytes) {
    void* object = malloc(bytes);
    if (object == 0)
        abort();
    return object;
}

void* newArray(u32 bytes) { return newObject(bytes); }
void deleteObject(void* object) { free(object); }
void deleteArray(void* array) { free(array); }
void deleteSized(void* object, u32 bytes) { (void)bytes, free(object); }
void deleteSizedArray(void* array, u32 bytes) { (void)bytes, free(array); }

void* __dso_handle;

int __cxa_atexit(void (*destructor)(void*), void* object, void* library) {
    (void)destructor, (void)object, (void)library;
    return 0;
}

void __cxa_pure_virtual(void) { abort(); }

// Called by the headers of the C++ library to throw.
void throwBadAlloc(void) __asm__("_ZSt17__throw_bad_allocv") __attribute__((alias("__cxa_pure_virtual")));
void throwBadLength(void) __asm__("_ZSt28__throw_bad_array_new_lengthv")
    __attribute__((alias("__cxa_pure_virtual")));
void throwLengthError(void) __asm__("_ZSt20__throw_length_errorPKc")
    __attribute__((alias("__cxa_pure_virtual")));
void throwOutOfRange(void) __asm__("_ZSt24__throw_out_of_range_fmtPKcz")
    __attribute__((alias("__cxa_pure_virtual")));
