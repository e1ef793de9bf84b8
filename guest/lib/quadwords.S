// Moving memory 16 bytes at a time, which only LQ and SQ can do.
    .set noreorder
    .text

    .globl  copyQuadwords
copyQuadwords:
1:  lq      $t0, 0($a1)
    addiu   $a2, $a2, -1
    addiu   $a1, $a1, 16
    addiu   $a0, $a0, 16
    bgtz    $a2, 1b
    sq      $t0, -16($a0)
    jr      $ra
    nop

    .globl  fillQuadwords
fillQuadwords:
1:  sd      $a1, 0($a0)
    addiu   $a2, $a2, -1
    addiu   $a0, $a0, 16
    bgtz    $a2, 1b
    sd      $a1, -8($a0)
    jr      $ra
    nop
