// A program whose instructions, calls and transfers are counted. Each line ends in how often it runs. Both calls of
// leaf return to outer by way of work, the second as a jump; outer returns early once; the transfer starts in a delay
// slot, when its function has all but returned.
        .set noreorder
        .macro function name
        .globl \name
        .type \name, @function
\name:
        .endm
        function _start
        li      $16, 3                  # 1
1:      jal     outer                   # 3
        addiu   $16, $16, -1            # 3
        bnez    $16, 1b                 # 3
        nop                             # 3
        beql    $0, $16, 2f             # 1
        nop                             # 1
2:      bnel    $0, $16, 1b             # 1
        nop                             # 0
        jal     draw                    # 1
        li      $4, 5                   # 1
        li      $3, 4                   # 1
        syscall                         # 1
        .size _start, . - _start
        function outer
        addiu   $sp, $sp, -32           # 3
        sd      $31, 8($sp)             # 3
        bnez    $16, 1f                 # 3
        ld      $31, 8($sp)             # 3
        jr      $31                     # 1
        addiu   $sp, $sp, 32            # 1
1:      jal     work                    # 2
        nop                             # 2
        ld      $31, 8($sp)             # 2
        jr      $31                     # 2
        addiu   $sp, $sp, 32            # 2
        .size outer, . - outer
        function work
        addiu   $sp, $sp, -16           # 2
        sd      $31, 0($sp)             # 2
        jal     leaf                    # 2
        nop                             # 2
        ld      $31, 0($sp)             # 2
        j       leaf                    # 2
        addiu   $sp, $sp, 16            # 2
        .size work, . - work
        .type local_leaf, @function
local_leaf:
        function leaf
        jr      $31                     # 4
        nop                             # 4
        .size leaf, . - leaf
        function unused
        jr      $31                     # 0
        nop                             # 0
        .size unused, . - unused
        function draw
        lui     $8, 0x1001              # 1
        lui     $9, %hi(packet)         # 1
        addiu   $9, $9, %lo(packet)     # 1
        sw      $9, -0x5FF0($8)         # 1
        li      $9, 7                   # 1
        sw      $9, -0x5FE0($8)         # 1
        li      $9, 0x101               # 1
.Lstart:
        jr      $31                     # 1
        sw      $9, -0x6000($8)         # 1
        .data
        .align 4
packet: .quad 0x1000000000008006, 0xE, 0x10000, 0x4C, 0x003F0000003F0000, 0x40, 6, 0, 0xFFFFFF, 1, 0, 5, 0x5000A0, 5
