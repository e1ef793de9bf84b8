// <assert.h>. A failed assertion stops the processor at its line, which a debugger shows.
#undef assert
#ifdef NDEBUG
#define assert(condition) ((void)0)
#else
#define assert(condition) ((condition) ? (void)0 : __builtin_trap())
#endif
