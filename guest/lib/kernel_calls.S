// Kernel calls as functions: the number goes into v1, arguments and result are where the ABI has them.
    .set noreorder
    .text

    .macro kernelCall name, number
    .globl  \name
\name:
    li      $v1, \number
    syscall
    jr      $ra
    nop
    .endm

    kernelCall SetGsCrt, 0x02
    kernelCall Exit, 0x04
    kernelCall AddDmacHandler, 0x12
    kernelCall EnableDmac, 0x16
    kernelCall setupThread, 0x3C
    kernelCall setupHeap, 0x3D
    kernelCall CreateSema, 0x40
    kernelCall FlushCache, 0x64
    kernelCall GsGetIMR, 0x70
    kernelCall GsPutIMR, 0x71
    kernelCall sceSifSetDma, 0x77
    kernelCall sceSifSetDChain, 0x78
    kernelCall sceSifGetReg, 0x7A
    // What interrupt handlers call has negative numbers; their low byte selects the call.
    kernelCall iGsPutIMR, -0x71
    kernelCall iGsGetIMR, -0x70
    kernelCall call9C, -0x64

// One step a round: the branch and its delay slot are one.
    .globl  waitSteps
waitSteps:
    bgtz    $a0, waitSteps
    addiu   $a0, $a0, -1
    jr      $ra
    nop

    .globl  waitForever
waitForever:
    b       waitForever
    nop
