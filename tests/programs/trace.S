// A short program for the trace: each kind of line once, then Exit. Registers go by number because their
// names depend on the ABI.
    .set noreorder
    .set noat
    .set nomacro
    .section .text.entry, "ax"

    .globl  _start
_start:
    lui     $8, 0x0010
    ori     $8, $8, 0x0200
    addiu   $9, $0, -2
    sw      $9, 4($8)
    lwu     $10, 4($8)
    beq     $0, $0, 1f
    nop
    addiu   $11, $0, 1
1:  bnel    $0, $0, 2f
    addiu   $11, $0, 2
    mult    $11, $9, $9
    jal     2f
    addu    $12, $8, $9
    addiu   $11, $0, 3
2:  di
    mfc0    $13, $15
    dsll32  $14, $13, 4
    mtc1    $11, $f1
    add.s   $f2, $f1, $f1
    lwc1    $f3, 4($8)
    sltiu   $2, $8, 8
    sll     $2, $9, 3
    addiu   $3, $0, 4
    syscall
