// printf to a screen of text, and snprintf.
#include "canvas.h"
#include "memory.h"
#include "packet.h"

#include <stdio.h>
#include <string.h>

enum {
    width = 320,
    height = 240,
    lineHeight = 8,
    columns = width / glyphAdvance,
    rows = height / lineHeight
};
enum { INK = 0x80FFFFFF };

static Canvas screen;
static u32 column;
static u32 row;

static void nextRow(void) {
    column = 0;
    if (row + 1 < rows) {
        row++;
        return;
    }
    memmove(screen.pixels, canvasRow(&screen, lineHeight), (height - lineHeight) * width * sizeof(u32));
    fillRectangle(&screen, 0, height - lineHeight, width, lineHeight, 0);
}

static void putOnScreen(char character) {
    if (screen.pixels == 0) {
        screen = newCanvas(width, height);
        memset(screen.pixels, 0, width * height * sizeof(u32));
    }
    if (character == '\n' || column == columns)
        nextRow();
    if (character == '\n')
        return;
    char text[2] = {character, 0};
    drawText(&screen, column * glyphAdvance, row * lineHeight, 1, INK, text);
    column++;
}

/// Output: memory, as far as there is room, or the screen.
typedef struct {
    char* text;  ///< null: the screen
    u32 room;
    u32 count;
} Output;

static void put(Output* output, char character) {
    if (output->text == 0)
        putOnScreen(character);
    else if (output->count < output->room)
        output->text[output->count] = character;
    output->count++;
}

typedef struct {
    u32 left;
    u32 zeros;
    u32 alternative;  ///< the flag #
    char plus;        ///< sign of numbers that are not negative, or 0
    u32 width;
    s32 precision;  ///< -1: not given
} Style;

static void putRepeated(Output* output, char character, u32 count) {
    for (; count != 0; count--)
        put(output, character);
}

/// A sign or prefix, zeros and a text, padded to the width.
static void putPadded(Output* output, const Style* style, const char* prefix, u32 zeros, const char* text,
                      u32 length) {
    u32 used = strlen(prefix) + zeros + length;
    u32 padding = style->width > used ? style->width - used : 0;
    if (!style->left && !style->zeros)
        putRepeated(output, ' ', padding);
    for (; *prefix != 0; prefix++)
        put(output, *prefix);
    putRepeated(output, '0', !style->left && style->zeros ? zeros + padding : zeros);
    for (u32 i = 0; i < length; i++)
        put(output, text[i]);
    if (style->left)
        putRepeated(output, ' ', padding);
}

static void putWhole(Output* output, Style* style, const char* prefix, u64 value, u32 base,
                     const char* digits) {
    char text[24];
    char* first = text + sizeof text;
    for (; value != 0; value /= base)
        *--first = digits[value % base];
    u32 length = (u32)(text + sizeof text - first);
    u32 least = style->precision < 0 ? 1 : (u32)style->precision;
    if (base == 8 && style->alternative && least <= length)
        least = length + 1;  // so that the first digit is 0
    style->zeros = style->zeros && style->precision < 0;
    putPadded(output, style, prefix, least > length ? least - length : 0, first, length);
}

/// Digits of a double that was a float, so that its low bits are 0.
static void putReal(Output* output, const Style* style, double real) {
    u64 bits;
    memcpy(&bits, &real, sizeof bits);
    s32 exponent = (s32)(bits >> 52 & 0x7FF) - 1023;
    u64 mantissa = (bits << 12 >> 12 | 1ull << 52) >> 29;  // 23 bits of fraction
    u32 precision = style->precision < 0 ? 6 : style->precision > 16 ? 16 : (u32)style->precision;

    // A fraction of 59 bits, plus half a unit of the last place.
    u64 half = 1ull << 58;
    for (u32 i = 0; i < precision; i++)
        half /= 10;
    u64 fraction = exponent >= 23   ? 0
                   : exponent >= 0  ? mantissa << (36 + exponent) << 5 >> 5
                   : exponent > -59 ? mantissa << 36 >> -exponent
                                    : 0;
    u64 whole = exponent < 0 ? 0 : exponent > 23 ? mantissa : mantissa >> (23 - exponent);
    fraction += half;
    whole += fraction >> 59;

    // Decimal digits of the integer part, last one first. Large numbers are doubled digit by digit.
    u8 digits[48] = {0};
    u32 count = 0;
    for (u64 rest = whole; rest != 0; rest /= 10)
        digits[count++] = (u8)(rest % 10);
    for (s32 doubling = 23; doubling < exponent; doubling++) {
        u32 carry = 0;
        for (u32 i = 0; i < count; i++) {
            u32 digit = digits[i] * 2u + carry;
            carry = digit >= 10;
            digits[i] = (u8)(digit - carry * 10);
        }
        if (carry != 0)
            digits[count++] = 1;
    }

    char text[72];
    u32 length = 0;
    if (count == 0)
        text[length++] = '0';
    while (count != 0)
        text[length++] = (char)('0' + digits[--count]);
    if (precision != 0 || style->alternative)
        text[length++] = '.';
    for (u32 i = 0; i < precision; i++) {
        fraction = (fraction << 5 >> 5) * 10;
        text[length++] = (char)('0' + (fraction >> 59));
    }
    char sign[2] = {bits >> 63 ? '-' : style->plus, 0};
    putPadded(output, style, sign, 0, text, length);
}

/// A number after `*`, or in decimal.
static s32 takeNumber(const char** format, va_list* arguments) {
    s32 number = 0;
    if (**format == '*') {
        ++*format;
        return va_arg(*arguments, s32);
    }
    for (; **format >= '0' && **format <= '9'; ++*format)
        number = number * 10 + (**format - '0');
    return number;
}

/// An integer of a size: -2 for char, -1 for short, 0 for int and long, 2 and above for long long.
static u64 takeInteger(va_list* arguments, s32 size, u32 isSigned) {
    if (size >= 2)
        return va_arg(*arguments, u64);
    u32 word = va_arg(*arguments, u32);
    u32 unused = size == -2 ? 24 : size == -1 ? 16 : 0;
    word <<= unused;
    return isSigned ? (u64)(s64)((s32)word >> unused) : word >> unused;
}

static void print(Output* output, const char* format, va_list given) {
    va_list arguments;
    va_copy(arguments, given);
    for (; *format != 0; format++) {
        if (*format != '%') {
            put(output, *format);
            continue;
        }
        Style style = {0, 0, 0, 0, 0, -1};
        for (format++;; format++)
            if (*format == '-')
                style.left = 1;
            else if (*format == '0')
                style.zeros = 1;
            else if (*format == '#')
                style.alternative = 1;
            else if (*format == '+' || (*format == ' ' && style.plus == 0))
                style.plus = *format;
            else if (*format != ' ')
                break;
        s32 fieldWidth = takeNumber(&format, &arguments);
        style.left |= fieldWidth < 0;
        style.width = fieldWidth < 0 ? -(u32)fieldWidth : (u32)fieldWidth;
        if (*format == '.') {
            format++;
            style.precision = takeNumber(&format, &arguments);
        }
        s32 size = 0;
        for (; *format == 'l' || *format == 'h' || *format == 'z'; format++)
            size += *format == 'l' ? 1 : *format == 'h' ? -1 : 0;
        char conversion = *format;
        switch (conversion) {
        case 'd':
        case 'i': {
            u64 value = takeInteger(&arguments, size, 1);
            u32 isNegative = value >> 63 != 0;
            char sign[2] = {isNegative ? '-' : style.plus, 0};
            putWhole(output, &style, sign, isNegative ? -value : value, 10, "0123456789");
            break;
        }
        case 'u':
        case 'o':
        case 'x':
        case 'X':
        case 'p': {
            u64 value = takeInteger(&arguments, size, 0);
            u32 base = conversion == 'u' ? 10 : conversion == 'o' ? 8 : 16;
            const char* prefix = base != 16 || !style.alternative || value == 0 ? ""
                                 : conversion == 'X'                            ? "0X"
                                                                                : "0x";
            putWhole(output, &style, prefix, value, base,
                     conversion == 'X' ? "0123456789ABCDEF" : "0123456789abcdef");
            break;
        }
        case 'f':
            putReal(output, &style, va_arg(arguments, double));
            break;
        case 'c': {
            char character = (char)va_arg(arguments, s32);
            style.zeros = 0;
            putPadded(output, &style, "", 0, &character, 1);
            break;
        }
        case 's': {
            const char* text = va_arg(arguments, const char*);
            u32 length = 0;
            while (text[length] != 0 && length != (u32)style.precision)
                length++;
            style.zeros = 0;
            putPadded(output, &style, "", 0, text, length);
            break;
        }
        case 0:
            format--;
            break;
        default:
            put(output, conversion);
        }
    }
    va_end(arguments);
}

static void show(void) {
    if (screen.pixels != 0)
        showCanvas(&screen);
}

int vprintf(const char* format, va_list arguments) {
    Output output = {0, 0, 0};
    print(&output, format, arguments);
    show();
    return (int)output.count;
}

int printf(const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    int count = vprintf(format, arguments);
    va_end(arguments);
    return count;
}

int vsnprintf(char* text, size_t bytes, const char* format, va_list arguments) {
    char none;
    Output output = {bytes == 0 ? &none : text, bytes == 0 ? 0 : bytes - 1, 0};
    print(&output, format, arguments);
    if (bytes != 0)
        text[output.count < output.room ? output.count : output.room] = 0;
    return (int)output.count;
}

int snprintf(char* text, size_t bytes, const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    int count = vsnprintf(text, bytes, format, arguments);
    va_end(arguments);
    return count;
}

int sprintf(char* text, const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    int count = vsnprintf(text, 0x7FFFFFFF, format, arguments);
    va_end(arguments);
    return count;
}

int puts(const char* text) { return printf("%s\n", text); }

int putchar(int character) {
    putOnScreen((char)character);
    show();
    return character;
}

/// Called to pass a float to printf. There is no arithmetic on doubles.
double __extendsfdf2(float value) {
    u32 bits;
    memcpy(&bits, &value, sizeof bits);
    u64 wide = (u64)(bits >> 31) << 63;
    if ((bits >> 23 & 0xFF) != 0)
        wide |= (u64)((bits >> 23 & 0xFF) + 1023 - 127) << 52 | (u64)(bits & 0x7FFFFF) << 29;
    double result;
    memcpy(&result, &wide, sizeof result);
    return result;
}
