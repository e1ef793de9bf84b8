// A function for each operation: operands in a0 and a1, result in v0.
    .set noreorder
    .set noat
    .set nomacro
    .text

    .macro begin name
    .globl  \name
    .align  2
\name:
    .endm

// v0 = instruction applied to a0 and a1. v0 starts as 99 so that an untouched destination shows.
    .macro binary name, instruction
    begin   \name
    addiu   $v0, $zero, 99
    \instruction $v0, $a0, $a1
    jr      $ra
    nop
    .endm

// The same with an immediate or a shift amount in place of the second operand.
    .macro immediate name, instruction, value
    begin   \name
    jr      $ra
    \instruction $v0, $a0, \value
    .endm

    binary  opAdd, add
    binary  opAddu, addu
    binary  opSub, sub
    binary  opSubu, subu
    binary  opAnd, and
    binary  opOr, or
    binary  opXor, xor
    binary  opSlt, slt
    binary  opSltu, sltu
    binary  opDaddu, daddu
    binary  opDsubu, dsubu
    binary  opMovz, movz
    binary  opMovn, movn
    binary  opSllv, sllv
    binary  opSrlv, srlv
    binary  opSrav, srav

    immediate opAddi1, addi, 1
    immediate opAddiuM1, addiu, -1
    immediate opSltiM5, slti, -5
    immediate opSltiuM1, sltiu, -1
    immediate opAndiF00F, andi, 0xF00F
    immediate opOri8001, ori, 0x8001
    immediate opXoriFFFF, xori, 0xFFFF
    immediate opDaddiuM2, daddiu, -2
    immediate opSll4, sll, 4
    immediate opSrl1, srl, 1
    immediate opSra4, sra, 4
    immediate opDsll8, dsll, 8
    immediate opDsrl8, dsrl, 8
    immediate opDsll32by1, dsll32, 1
    immediate opDsrl32by1, dsrl32, 1
    immediate opDsra32by4, dsra32, 4

    begin   opLui8000
    jr      $ra
    lui     $v0, 0x8000

// Products and quotients, and what they leave in HI and LO.
    binary  opMult, mult
    binary  opMult1, mult1

    .macro inHiLo name, instruction, half
    begin   \name
    \instruction
    jr      $ra
    \half   $v0
    .endm

    inHiLo  opMultHigh, "mult $t0, $a0, $a1", mfhi
    inHiLo  opDivLow, "div $zero, $a0, $a1", mflo
    inHiLo  opDivHigh, "div $zero, $a0, $a1", mfhi
    inHiLo  opDivuLow, "divu $zero, $a0, $a1", mflo
    inHiLo  opDivuHigh, "divu $zero, $a0, $a1", mfhi

// DMULTU v0, a0, a1: the assembler does not know it for this processor.
    begin   opDmultu
    .word   0x0085101D
    jr      $ra
    nop

    begin   opDmultuHigh
    .word   0x0085101D
    jr      $ra
    mfhi    $v0

// A product without a destination goes into r0, which is a register like any other; put back to 0 here.
    begin   opMultIntoR0
    mult    $a0, $a1
    or      $v0, $zero, $zero
    jr      $ra
    xor     $zero, $zero, $zero

    begin   opR0
    addu    $zero, $a0, $a1
    or      $v0, $zero, $zero
    jr      $ra
    xor     $zero, $zero, $zero

// System control.
    begin   opStatus
    jr      $ra
    mfc0    $v0, $12

    begin   opPrid
    jr      $ra
    mfc0    $v0, $15

// How Status changes: by EI in the upper half of the result, what DI leaves of that in the lower.
    begin   opInterrupts
    mfc0    $t0, $12
    ei
    mfc0    $t1, $12
    di
    mfc0    $t2, $12
    xor     $t1, $t1, $t0
    xor     $t2, $t2, $t0
    dsll32  $v0, $t1, 0
    jr      $ra
    or      $v0, $v0, $t2

    begin   opSyncCache
    sync
    cache   0, 0($a0)
    jr      $ra
    or      $v0, $a1, $zero

// Call 0x3D adds its arguments; only the low byte of the number counts.
    begin   opSyscall
    addiu   $v1, $zero, 0x73D
    syscall
    jr      $ra
    nop

// Branches: 1 from the delay slot, 2 from falling through.
    .macro branchEnd
    addiu   $v0, $v0, 1
    addiu   $v0, $v0, 2
1:  jr      $ra
    nop
    .endm

    .macro compareBranch name, instruction
    begin   \name
    addiu   $v0, $zero, 0
    \instruction $a0, $a1, 1f
    branchEnd
    .endm

    .macro zeroBranch name, instruction
    begin   \name
    addiu   $v0, $zero, 0
    \instruction $a0, 1f
    branchEnd
    .endm

    compareBranch opBeq, beq
    compareBranch opBne, bne
    compareBranch opBeql, beql
    compareBranch opBnel, bnel
    zeroBranch opBlez, blez
    zeroBranch opBgtz, bgtz
    zeroBranch opBltz, bltz
    zeroBranch opBgez, bgez
    zeroBranch opBlezl, blezl
    zeroBranch opBltzl, bltzl
    zeroBranch opBgezl, bgezl

    begin   opJ
    addiu   $v0, $zero, 0
    j       1f
    branchEnd

// Linking jumps: the distance from the jump to its return address, plus 1 from the delay slot.
    begin   opJal
    or      $t0, $ra, $zero
2:  jal     1f
    addiu   $v0, $zero, 1
    addiu   $v0, $v0, 100
1:  lui     $t1, %hi(2b)
    addiu   $t1, $t1, %lo(2b)
    subu    $ra, $ra, $t1
    jr      $t0
    addu    $v0, $v0, $ra

    begin   opJalr
    or      $t0, $ra, $zero
    lui     $t1, %hi(1f)
    addiu   $t1, $t1, %lo(1f)
2:  jalr    $t2, $t1
    addiu   $v0, $zero, 1
    addiu   $v0, $v0, 100
1:  lui     $t1, %hi(2b)
    addiu   $t1, $t1, %lo(2b)
    subu    $t2, $t2, $t1
    jr      $t0
    addu    $v0, $v0, $t2

    begin   opJr
    lui     $t1, %hi(1f)
    addiu   $t1, $t1, %lo(1f)
    addiu   $v0, $zero, 0
    jr      $t1
    branchEnd

// Loads from the block at a0.
    .macro load name, instruction, offset
    begin   \name
    or      $v0, $a1, $zero
    jr      $ra
    \instruction $v0, \offset($a0)
    .endm

    load    opLb, lb, 5
    load    opLbu, lbu, 5
    load    opLh, lh, 6
    load    opLhu, lhu, 6
    load    opLw, lw, 4
    load    opLwu, lwu, 4
    load    opLd, ld, 8
    load    opLdr, ldr, 8
    load    opLwl, lwl, 4
    load    opLwr, lwr, 4

// Stores into the block, read back as a doubleword.
    .macro store name, instruction, offset
    begin   \name
    \instruction $a1, \offset($a0)
    jr      $ra
    ld      $v0, 0($a0)
    .endm

    store   opSb, sb, 3
    store   opSh, sh, 2
    store   opSw, sw, 4
    store   opSd, sd, 0
    store   opSdr, sdr, 0
    store   opSwl, swl, 0
    store   opSwr, swr, 0

// The halves of a quadword register: LDL and SDL move the upper one.
    begin   opLdl
    ldl     $t0, 8($a0)
    sq      $t0, 16($a0)
    jr      $ra
    ld      $v0, 24($a0)

    begin   opSdl
    lq      $t0, 0($a0)
    sdl     $t0, 16($a0)
    jr      $ra
    ld      $v0, 16($a0)

    begin   opLq
    lq      $t0, 0($a0)
    sq      $t0, 16($a0)
    ld      $t1, 16($a0)
    ld      $t2, 24($a0)
    jr      $ra
    xor     $v0, $t1, $t2

    begin   opLwc1
    lwc1    $f1, 4($a0)
    swc1    $f1, 16($a0)
    jr      $ra
    lw      $v0, 16($a0)

// Floating point: patterns in by MTC1, out through memory.
    .macro floatIn
    mtc1    $a0, $f1
    mtc1    $a1, $f2
    .endm

    .macro floatOut
    addiu   $sp, $sp, -16
    swc1    $f0, 0($sp)
    lw      $v0, 0($sp)
    jr      $ra
    addiu   $sp, $sp, 16
    .endm

    .macro floatOperation name, instruction
    begin   \name
    floatIn
    \instruction
    floatOut
    .endm

    floatOperation opAddS, "add.s $f0, $f1, $f2"
    floatOperation opSubS, "sub.s $f0, $f1, $f2"
    floatOperation opMulS, "mul.s $f0, $f1, $f2"
    floatOperation opDivS, "div.s $f0, $f1, $f2"
    floatOperation opMovS, "mov.s $f0, $f1"
    floatOperation opNegS, "neg.s $f0, $f1"
    floatOperation opCvtWS, "trunc.w.s $f0, $f1"    // CVT_W_S by another name
    floatOperation opCvtS, "cvt.s.w $f0, $f1"

    begin   opToInteger
    floatIn
    trunc.w.s $f0, $f1
    jr      $ra
    mfc1    $v0, $f0

    begin   opMtc1Mfc1
    mtc1    $a0, $f1
    jr      $ra
    mfc1    $v0, $f1

// Compares: the condition as 0 or 1.
    .macro floatCompare name, instruction
    begin   \name
    floatIn
    \instruction $f1, $f2
    addiu   $v0, $zero, 1
    bc1t    1f
    nop
    addiu   $v0, $zero, 0
1:  jr      $ra
    nop
    .endm

    floatCompare opCEqS, c.eq.s
    floatCompare opCOltS, c.lt.s                    // C_OLT_S by another name

// Branches on whether a < b.
    .macro floatBranch name, instruction
    begin   \name
    floatIn
    c.lt.s  $f1, $f2
    addiu   $v0, $zero, 0
    \instruction 1f
    branchEnd
    .endm

    floatBranch opBc1f, bc1f
    floatBranch opBc1t, bc1t
    floatBranch opBc1tl, bc1tl
