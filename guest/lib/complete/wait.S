// Waiting for a driver step, exactly.
    .set noreorder
    .text

// One step a round: the branch and its delay slot are one.
    .globl  waitForStep
waitForStep:
    mfc0    $t0, $9
    subu    $t0, $a0, $t0
    addiu   $t0, $t0, -4                // this step to the return, less the one that ends the loop
1:  bgtz    $t0, 1b
    addiu   $t0, $t0, -1
    jr      $ra
    nop
