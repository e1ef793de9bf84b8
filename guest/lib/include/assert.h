// What there is of <assert.h>: what does not hold stops the processor, on a line that a debugger shows.
#undef assert
#ifdef NDEBUG
#define assert(condition) ((void)0)
#else
#define assert(condition) ((condition) ? (void)0 : __builtin_trap())
#endif
