# tarn_add_guest(NAME [COMPLETE_CPU] [EVERY_INSTRUCTION] SOURCES file...): builds a program for the emulated
# machine, with the guest library and its start-up code, into the current binary directory as NAME.elf, in target
# guest-NAME. The program is checked: an instruction that the emulated processor does not have fails the build.
# With COMPLETE_CPU that is the complete processor; with EVERY_INSTRUCTION each one that the processor has must
# occur.
set(TARN_GUEST_DIR ${CMAKE_SOURCE_DIR}/guest)

# For both processors: 64-bit registers, 32-bit pointers, single precision only, no global pointer; nothing
# underneath.
set(TARN_GUEST_FLAGS
    -march=r5900 -mabi=n32 -msingle-float -mno-abicalls -fno-pic -G0 -mno-llsc -nostdlib
    -ffunction-sections -fdata-sections -g -Wall -Wextra)

set(TARN_GUEST_DESCRIBED_FLAGS
    # No calls to the compiler's own functions.
    -ffreestanding -fno-builtin -fno-tree-loop-distribute-patterns
    # What it does not have: traps on division by zero, some of the likely branches.
    -mno-check-zero-division -mno-branch-likely
    # Constants that leave a loop and find no floating-point register would go to an integer one by MFC1,
    # which converts.
    -fno-move-loop-invariants
    # Every instruction takes one step, so the smallest code (which divides) is the fastest.
    -Os -Wconversion -Wno-sign-conversion)

# The compiler inlines what it knows of the standard functions, and main returns 0 at its end; there are no NaNs or
# infinities to care for.
set(TARN_GUEST_COMPLETE_FLAGS
    -DTARN_COMPLETE_CPU=1 -fno-math-errno -fcx-limited-range -O2)

set(TARN_GUEST_C_FLAGS -std=gnu17)
set(TARN_GUEST_CXX_FLAGS -std=gnu++20 -fno-exceptions -fno-rtti -fno-threadsafe-statics)
set(TARN_GUEST_LINK_FLAGS
    -static -Wl,--build-id=none,--gc-sections,-z,max-page-size=16,--no-warn-rwx-segments)

# The flags stand in one place: the programs of guest/ are built by the script that is installed.
set(TARN_GUEST_BUILD ${CMAKE_BINARY_DIR}/tarn-guest-build)
include(GNUInstallDirs)
function(tarn_configure_guest_build)
    foreach(flags "" _DESCRIBED _COMPLETE _C _CXX _LINK)
        list(JOIN TARN_GUEST${flags}_FLAGS " " TARN_GUEST${flags}_FLAGS)
    endforeach()
    configure_file(${CMAKE_SOURCE_DIR}/scripts/tarn-guest-build.in ${TARN_GUEST_BUILD} @ONLY)
endfunction()
tarn_configure_guest_build()

# The library is compiled once for each processor.
set(TARN_GUEST_BUILT ${CMAKE_CURRENT_BINARY_DIR}/library)
set(TARN_GUEST_ENVIRONMENT GUEST_CC=${GUEST_CC})
file(GLOB_RECURSE TARN_GUEST_LIBRARY_FILES CONFIGURE_DEPENDS ${TARN_GUEST_DIR}/lib/*)
foreach(cpu described complete)
    set(options)
    if(cpu STREQUAL complete)
        set(options --complete-cpu)
    endif()
    add_custom_command(
        OUTPUT ${TARN_GUEST_BUILT}/${cpu}.a
        COMMAND ${CMAKE_COMMAND} -E env ${TARN_GUEST_ENVIRONMENT}
                TARN_GUEST_LIBRARY_OPTIONS=$<$<BOOL:${TARN_WERROR}>:-Werror>
                sh ${TARN_GUEST_BUILD} ${options} --library ${TARN_GUEST_BUILT}
        DEPENDS ${TARN_GUEST_LIBRARY_FILES} ${TARN_GUEST_BUILD}
        COMMENT "Building the guest library for the ${cpu} processor"
        VERBATIM)
endforeach()
add_custom_target(guest-library ALL DEPENDS ${TARN_GUEST_BUILT}/described.a ${TARN_GUEST_BUILT}/complete.a)

function(tarn_add_guest name)
    cmake_parse_arguments(guest "COMPLETE_CPU;EVERY_INSTRUCTION" "" "SOURCES" ${ARGN})
    set(inputs ${guest_SOURCES})
    list(FILTER inputs EXCLUDE REGEX "\\.h$")
    set(environment ${TARN_GUEST_ENVIRONMENT} TARN_GUEST_BUILT=${TARN_GUEST_BUILT})
    set(options)
    if(guest_COMPLETE_CPU)
        set(options --complete-cpu)
    endif()
    if(guest_EVERY_INSTRUCTION)
        list(APPEND environment TARN_GUEST_CHECK_OPTIONS=--every-instruction)
    endif()
    set(elf ${CMAKE_CURRENT_BINARY_DIR}/${name}.elf)
    add_custom_command(
        OUTPUT ${elf}
        COMMAND ${CMAKE_COMMAND} -E env ${environment} sh ${TARN_GUEST_BUILD} ${options} ${elf} ${inputs}
        DEPENDS guest-check guest-library ${guest_SOURCES} ${TARN_GUEST_LIBRARY_FILES} ${TARN_GUEST_BUILD}
        COMMENT "Building guest program ${name}"
        VERBATIM)
    add_custom_target(guest-${name} ALL DEPENDS ${elf})
endfunction()
