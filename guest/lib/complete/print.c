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
    char plus;  ///< sign of numbers that are not negative, or 0
    u32 width;
    s32 precision;  ///< -1: not given
} Style;

static void putPadded(Output* output, const Style* style, char sign, const char* text, u32 length) {
    u32 used = length + (sign != 0);
    u32 padding = style->width > used ? style->width - used : 0;
    if (!style->left && !style->zeros)
        for (; padding != 0; padding--)
            put(output, ' ');
    if (sign != 0)
        put(output, sign);
    if (!style->left)
        for (; padding != 0; padding--)
            put(output, '0');
    for (u32 i = 0; i < length; i++)
        put(output, text[i]);
    for (; padding != 0; padding--)
        put(output, ' ');
}

static void putWhole(Output* output, const Style* style, char sign, u64 value, u32 base, const char* digits) {
    char text[24];
    char* first = text + sizeof text;
    for (; value != 0 || first == text + sizeof text; value /= base)
        *--first = digits[value % base];
    putPadded(output, style, sign, first, (u32)(text + sizeof text - first));
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
    if (precision != 0)
        text[length++] = '.';
    for (u32 i = 0; i < precision; i++) {
        fraction = (fraction << 5 >> 5) * 10;
        text[length++] = (char)('0' + (fraction >> 59));
    }
    putPadded(output, style, bits >> 63 ? '-' : style->plus, text, length);
}

static void print(Output* output, const char* format, va_list arguments) {
    for (; *format != 0; format++) {
        if (*format != '%') {
            put(output, *format);
            continue;
        }
        Style style = {0, 0, 0, 0, -1};
        for (format++;; format++)
            if (*format == '-')
                style.left = 1;
            else if (*format == '0')
                style.zeros = 1;
            else if (*format == '+' || *format == ' ')
                style.plus = *format;
            else
                break;
        if (*format == '*')
            style.width = va_arg(arguments, u32), format++;
        for (; *format >= '0' && *format <= '9'; format++)
            style.width = style.width * 10 + (u32)(*format - '0');
        if (*format == '.') {
            style.precision = 0;
            for (format++; *format >= '0' && *format <= '9'; format++)
                style.precision = style.precision * 10 + (*format - '0');
        }
        u32 longs = 0;
        for (; *format == 'l' || *format == 'h' || *format == 'z'; format++)
            longs += *format == 'l';
        switch (*format) {
        case 'd':
        case 'i': {
            s64 value = longs >= 2 ? va_arg(arguments, s64) : va_arg(arguments, s32);
            putWhole(output, &style, value < 0 ? '-' : style.plus, value < 0 ? -(u64)value : (u64)value, 10,
                     "0123456789");
            break;
        }
        case 'u':
        case 'x':
        case 'X':
        case 'p': {
            u64 value = longs >= 2 ? va_arg(arguments, u64) : va_arg(arguments, u32);
            putWhole(output, &style, 0, value, *format == 'u' ? 10 : 16,
                     *format == 'X' ? "0123456789ABCDEF" : "0123456789abcdef");
            break;
        }
        case 'f':
            putReal(output, &style, va_arg(arguments, double));
            break;
        case 'c': {
            char character = (char)va_arg(arguments, s32);
            putPadded(output, &style, 0, &character, 1);
            break;
        }
        case 's': {
            const char* text = va_arg(arguments, const char*);
            u32 length = 0;
            while (text[length] != 0 && length != (u32)style.precision)
                length++;
            style.zeros = 0;
            putPadded(output, &style, 0, text, length);
            break;
        }
        case 0:
            return;
        default:
            put(output, *format);
        }
    }
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
