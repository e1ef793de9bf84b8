// Waiting for an exact driver step.
    .set noreorder
    .text

// One step per round: a branch and its delay slot count as one.
    .globl  waitForStep
waitForStep:
    mfc0    $t0, $9
    subu    $t0, $a0, $t0
    addiu   $t0, $t0, -4                // this step to the return, less the one that ends the loop
1:  bgtz    $t0, 1b
    addiu   $t0, $t0, -1
    jr      $ra
    nop
