// Where a program begins: stack, heap, .bss, main, and Exit with main's result.
    .set noreorder
    .section .text.entry, "ax"

    .globl _start
_start:
    // Call 0x3C: thread set-up. The kernel answers with the top of the stack, zero-extended; ADDIU makes
    // it the sign-extended address that compiled code expects.
    lui     $gp, %hi(_gp)
    addiu   $gp, $gp, %lo(_gp)
    move    $a0, $gp
    li      $a1, -1
    li      $a2, 0x10000
    li      $v1, 0x3C
    syscall
#ifdef TARN_COMPLETE_CPU
    // The same memory at its physical address, where code runs too: that of nested functions is on the stack.
    dsll32  $v0, $v0, 5
    dsrl32  $v0, $v0, 5
#endif
    addiu   $sp, $v0, -64

    // .bss first: the variables written below live there. The loader copies it from the file, so it is
    // zero already when the file is whole; a program that is started a second time finds it dirty.
    lui     $t0, %hi(__bss_start)
    addiu   $t0, $t0, %lo(__bss_start)
    lui     $t1, %hi(__bss_end)
    addiu   $t1, $t1, %lo(__bss_end)
    beq     $t0, $t1, 2f
    nop
1:  addiu   $t0, $t0, 16
    bne     $t0, $t1, 1b
    sq      $zero, -16($t0)
2:
    // Call 0x3D: heap set-up, from the end of the program for heapSize bytes. The answer is its end.
    lui     $a0, %hi(_end)
    addiu   $a0, $a0, %lo(_end)
    lui     $a1, %hi(__heap_size)
    addiu   $a1, $a1, %lo(__heap_size)
    lui     $t0, %hi(heapNext)
    sw      $a0, %lo(heapNext)($t0)
    li      $v1, 0x3D
    syscall
    lui     $t0, %hi(heapEnd)
    sw      $v0, %lo(heapEnd)($t0)

#ifdef TARN_COMPLETE_CPU
    // Constructors of C++ objects.
    lui     $s0, %hi(__init_array_start)
    addiu   $s0, $s0, %lo(__init_array_start)
    lui     $s1, %hi(__init_array_end)
    addiu   $s1, $s1, %lo(__init_array_end)
    b       5f
    nop
4:  lw      $t9, 0($s0)
    jalr    $t9
    addiu   $s0, $s0, 4
5:  bne     $s0, $s1, 4b
    nop
#endif

#ifdef TARN_COMPLETE_CPU
    li      $a0, 1
    lui     $a1, %hi(arguments)
    jal     main
    addiu   $a1, $a1, %lo(arguments)
#else
    jal     main
    nop
#endif
    move    $a0, $v0
    li      $v1, 0x04
3:  syscall                             // Exit: the processor stops here
    b       3b
    nop

#ifdef TARN_COMPLETE_CPU
    // The argv of main: an empty name.
    .section .rodata.arguments, "a"
    .balign 4
arguments:
    .word   name, 0
name:
    .word   0
#endif
