# tarn_add_guest(NAME [EVERY_INSTRUCTION] SOURCES file...): builds a program for the emulated machine, with the
# guest library and its start-up code, into the current binary directory as NAME.elf, in target guest-NAME. The
# program is checked: an instruction that the emulated processor does not have fails the build. With
# EVERY_INSTRUCTION each one that it has must occur.
set(TARN_GUEST_DIR ${CMAKE_CURRENT_LIST_DIR}/../guest)
set(TARN_GUEST_FLAGS
    # The processor: 64-bit registers, 32-bit pointers, single precision only, no global pointer.
    -march=r5900 -mabi=n32 -msingle-float -mno-abicalls -fno-pic -G0
    # Nothing underneath: no C library, no calls to the compiler's own.
    -ffreestanding -nostdlib -fno-builtin -fno-tree-loop-distribute-patterns
    # What it does not have: traps on division by zero, some of the likely branches.
    -mno-check-zero-division -mno-branch-likely
    # Constants that leave a loop and find no floating-point register would go to an integer one by MFC1,
    # which converts.
    -fno-move-loop-invariants
    # Every instruction takes one step, so the smallest code (which divides) is the fastest.
    -Os -ffunction-sections -fdata-sections
    -std=gnu17 -g -Wall -Wextra -Wconversion -Wno-sign-conversion -Werror
    -ffile-prefix-map=${CMAKE_SOURCE_DIR}/=
    -static -Wl,--build-id=none,--gc-sections,-z,max-page-size=16,--no-warn-rwx-segments)

function(tarn_add_guest name)
    cmake_parse_arguments(guest "EVERY_INSTRUCTION" "" "SOURCES" ${ARGN})
    file(GLOB library CONFIGURE_DEPENDS ${TARN_GUEST_DIR}/lib/*.[chS])
    set(inputs ${guest_SOURCES} ${library})
    list(FILTER inputs INCLUDE REGEX "\\.[cS]$")
    set(check guest-check)
    if(guest_EVERY_INSTRUCTION)
        list(APPEND check --every-instruction)
    endif()
    set(elf ${CMAKE_CURRENT_BINARY_DIR}/${name}.elf)
    add_custom_command(
        OUTPUT ${elf}
        COMMAND ${GUEST_CC} ${TARN_GUEST_FLAGS} -I${TARN_GUEST_DIR}/lib -T ${TARN_GUEST_DIR}/lib/tarn.ld
                ${inputs} -o ${elf}.unchecked
        COMMAND ${check} ${elf}.unchecked
        COMMAND ${CMAKE_COMMAND} -E rename ${elf}.unchecked ${elf}
        DEPENDS guest-check ${guest_SOURCES} ${library} ${TARN_GUEST_DIR}/lib/tarn.ld
        COMMENT "Building guest program ${name}"
        VERBATIM)
    add_custom_target(guest-${name} ALL DEPENDS ${elf})
endfunction()
