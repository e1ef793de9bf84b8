// Makes every kernel call that works, checks the results, and ends with Exit, which stops the processor with
// the number of wrong results in a0. Run it with General:Debug_syscall = 1.
#include "tarn_guest.h"

enum { SIF0_CHANNEL = 5, D5_MADR = 0x1000C010 };

static s32 failures;
static s32 handlerEntered;

/// What sceSifSetDma would send; it is not read.
static Quadword transfers[2];

static void expect(u64 answer, u64 expected) {
    if (answer != expected)
        failures++;
}

/// Called in the middle of sceSifSetDma: returning from it returns from that call.
static s32 onSif0(s32 channel) {
    (void)channel;
    handlerEntered++;
    return 0;
}

static void interruptMasks(void) {
    SetGsCrt(1, 2, 1);
    GsGetIMR();
    expect(GsPutIMR(0xFF00), 0xFF00);
    iGsPutIMR(0xFF00);
    iGsGetIMR();
    call9C();
    FlushCache(0);
}

static void semaphoreAndHeap(void) {
    expect((u64)CreateSema(0), 1);
    expect((u64)CreateSema(0), 0);
    expect(setupHeap(0x00200000, 0x100000), 0x00300000);
    expect(setupHeap(~0ull, 1), 0);
}

static void sif(void) {
    expect((u64)EnableDmac(SIF0_CHANNEL), 1);
    expect((u64)EnableDmac(SIF0_CHANNEL), 0);
    AddDmacHandler(SIF0_CHANNEL, onSif0);

    sceSifSetDma(transfers, 2);
    expect((u64)handlerEntered, 0);
    sceSifSetDma(transfers, 1);
    expect((u64)handlerEntered, 1);
    sceSifSetDma(transfers, 1);
    expect((u64)handlerEntered, 1);

    expect(sceSifSetDChain(), 0x84);
    writeDevice32(D5_MADR, 0x00300000);
    expect(sceSifSetDChain(), 0x84);
    expect(sceSifGetReg(4), 0x60000);
}

int main(void) {
    interruptMasks();
    semaphoreAndHeap();
    sif();
    return failures;
}
