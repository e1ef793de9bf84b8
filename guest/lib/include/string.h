// A part of <string.h>.
#pragma once

#include <stddef.h>

#ifdef __cplusplus
extern "C" {
#endif

void* memcpy(void* destination, const void* source, size_t bytes);
void* memmove(void* destination, const void* source, size_t bytes);
void* memset(void* destination, int value, size_t bytes);
int memcmp(const void* a, const void* b, size_t bytes);

#ifdef TARN_COMPLETE_CPU
size_t strlen(const char* text);
int strcmp(const char* a, const char* b);
int strncmp(const char* a, const char* b, size_t count);
char* strcpy(char* destination, const char* source);
char* strncpy(char* destination, const char* source, size_t count);
char* strcat(char* destination, const char* source);
char* strchr(const char* text, int character);
char* strrchr(const char* text, int character);
void* memchr(const void* memory, int byte, size_t bytes);
#endif

#ifdef __cplusplus
}
#endif
