// The headers of the C++ library include this header of the C library, which does not exist here.
#pragma once
#define __GLIBC_PREREQ(major, minor) 0
