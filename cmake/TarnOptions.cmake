# The compiler options that every target of the project shares (interface library tarn_options).
set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
if(NOT CMAKE_BUILD_TYPE)
    set(CMAKE_BUILD_TYPE Release)
endif()
set(CMAKE_CXX_FLAGS_DEBUG "-O0 -g")
# Aligned loops: otherwise their speed changes by a third with whatever stands in front of them.
set(CMAKE_CXX_FLAGS_RELEASE "-O3 -DNDEBUG -falign-functions=32 -falign-loops=32")
set(CMAKE_CXX_FLAGS_RELWITHDEBINFO "-O1 -g")

add_library(tarn_options INTERFACE)
# No contraction: guest arithmetic must round the same on every host and at every optimisation level.
target_compile_options(tarn_options INTERFACE
    -Wall -Wextra -Wconversion -Wshadow -Werror -ffp-contract=off -fno-strict-overflow)

if(TARN_LTO)
    include(CheckIPOSupported)
    check_ipo_supported()
    set(CMAKE_INTERPROCEDURAL_OPTIMIZATION ON)
endif()
if(TARN_SANITIZE)
    target_compile_options(tarn_options INTERFACE
        -fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
    target_link_options(tarn_options INTERFACE -fsanitize=address,undefined)
endif()
if(TARN_FUZZ)
    # Only what was reached guides the fuzzer: the targets build their inputs from pieces that fit, and recording
    # every comparison would cost a third of the speed.
    target_compile_options(tarn_options INTERFACE -fsanitize=fuzzer-no-link -fno-sanitize-coverage=trace-cmp)
endif()
