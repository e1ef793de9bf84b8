// Text on the console's serial port, which General:Console=1 shows: tarn-headless on its standard output,
// tarn in the EmuOutput pane. Without that key each character is a message about an unknown DMA register
// instead.
#pragma once

#include "types.h"

void print(const char* text);
void printNumber(s32 number);  ///< in decimal
void printHex(u32 number);     ///< eight digits
