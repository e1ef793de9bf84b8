// Text output to the serial port.
#include "console.h"

enum { SIO_TXFIFO = 0x1000F180 };

static void printCharacter(char character) { writeDevice32(SIO_TXFIFO, (u8)character); }

void print(const char* text) {
    for (; *text != 0; text++)
        printCharacter(*text);
}

void printNumber(s32 number) {
    char digits[12];
    char* first = digits + sizeof digits - 1;
    u32 rest = number < 0 ? 0u - (u32)number : (u32)number;
    *first = 0;
    do
        *--first = (char)('0' + rest % 10);
    while ((rest /= 10) != 0);
    if (number < 0)
        *--first = '-';
    print(first);
}

void printHex(u32 number) {
    for (u32 i = 0; i < 8; i++, number <<= 4)
        printCharacter("0123456789abcdef"[number >> 28]);
}
