// What the headers of the C++ library look for in the C library: there is none.
#pragma once
#define __GLIBC_PREREQ(major, minor) 0
