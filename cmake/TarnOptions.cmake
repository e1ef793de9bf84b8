# The compiler options that all targets of the project share (interface library tarn_options), and the check that
# the host can run Tarn. Flags of the user's are kept.
if(NOT CMAKE_SIZEOF_VOID_P EQUAL 8 OR NOT CMAKE_CXX_BYTE_ORDER STREQUAL LITTLE_ENDIAN)
    message(FATAL_ERROR "Tarn needs a 64-bit little-endian host, and ${CMAKE_CXX_COMPILER} does not compile for one.")
endif()

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
get_property(multi_config GLOBAL PROPERTY GENERATOR_IS_MULTI_CONFIG)
if(NOT multi_config AND NOT CMAKE_BUILD_TYPE)
    set(CMAKE_BUILD_TYPE Release CACHE STRING "Debug, Release, RelWithDebInfo or None" FORCE)
endif()

add_library(tarn_options INTERFACE)
# No contraction: guest arithmetic must round the same on every host and at every optimisation level.
target_compile_options(tarn_options INTERFACE -Wall -Wextra -Wconversion -Wshadow -ffp-contract=off)
if(CMAKE_CXX_COMPILER_ID STREQUAL GNU AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
    target_compile_options(tarn_options INTERFACE -Wno-restrict) # wrong about "text" + std::string (GCC bug 105651)
endif()
if(TARN_WERROR)
    target_compile_options(tarn_options INTERFACE -Werror)
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

# Puts a program at the top of the current build directory. Of a cross-compiled one a script stands there which runs
# it in the emulator, so that tests and scripts can start it like any other.
function(tarn_place_program name)
    set(directory ${CMAKE_CURRENT_BINARY_DIR})
    if(NOT CMAKE_CROSSCOMPILING_EMULATOR)
        set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${directory})
        return()
    endif()
    set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${directory}/bin)
    list(JOIN CMAKE_CROSSCOMPILING_EMULATOR " " emulator)
    file(WRITE ${directory}/${name} "#!/bin/sh\nexec ${emulator} ${directory}/bin/${name} \"$@\"\n")
    file(CHMOD ${directory}/${name}
        PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
endfunction()
