// Placeholders until this subsystem is built.
#include "gs/display.h"
#include "gs/gs.h"
#include "gs/registers.h"
#include "gs/transfer.h"
namespace tarn {
u32 PS2EgetLibType() { return 1; }
u32 PS2EgetLibVersion() { return 0x10000; }
const char* PS2EgetLibName() { return "Gravel-sdl Driver"; }
s32 GSinit() { return -1; }
s32 GSopen(SDL_Surface*, const char*) { return -1; }
void GSclose() {}
void GSshutdown() {}
void GSvsync() {}
void GSkeyEvent() {}
void GSconfigure() {}
void GSabout() {}
s32 GStest() { return 0; }
void GSwrite32(u32, u32) {}
void GSwrite64(u32, u64) {}
u32 GSread32(u32) { return 0; }
u64 GSread64(u32) { return 0; }
void GSgifTransfer(const u8*, u32) {}
void GSgifTransfer2(const u8*) {}
void GSmakeSnapshot(const char*) {}
void gsSetCtxt(u32) {}
void GSwrite(u64, u32) {}
void TransferPixel(u32) {}
void FBwrite(const u8*) {}
void FBwrite24_3(const u8*) {}
void FBmoveImage() {}
u32 expandPalette16(u16) { return 0; }
void copy_clut_pscm32(u32*, const u32*) {}
void copy_clut_pscm324(u32*, const u32*) {}
void copy_clut_cpsm16(u32*, const u16*) {}
}  // namespace tarn
