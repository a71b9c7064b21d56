// SPDX-License-Identifier: MIT
/* The tools for sample data, from C: samples, records, checksums and names of a file. */
#include "veltra/processor/byte_order.h"
#include "veltra/processor/checksum.h"
#include "veltra/processor/record_swap.h"
#include "veltra/processor/sample_conversion.h"
#include "veltra/processor/utf8_text.h"

#include <stdio.h>
#include <string.h>

static int samples(void) {
    /* Two frames of two channels, 24 bits, big-endian: 0.5 and -0.5, 0.25 and -1/8388608. */
    const unsigned char stream[] = {0x40, 0, 0, 0xC0, 0, 0, 0x20, 0, 0, 0xFF, 0xFF, 0xFF};
    unsigned char again[sizeof stream];
    float left[2];
    float right[2];

    GetConvertNToFloat(kVLSampleInt24, false)(left, stream, 2, right);
    printf("left %g %g, right %g %g\n", (double)left[0], (double)left[1], (double)right[0],
           (double)right[1]);
    GetConvertFloatToN(kVLSampleInt24, false)(again, left, 2, right);
    return memcmp(again, stream, sizeof stream) == 0;
}

static int other_byte_order(void) {
    /* A 32-bit rate, two 16-bit numbers, a name of 4 bytes that stays, a 64-bit position. */
    static const int8_t fields[] = {4, 2, 2, -4, 8, 0};
    unsigned char record[20] = {0x80, 0xBB, 0, 0, 2, 0, 24, 0, 'd', 'a', 't', 'a', 1};
    unsigned char header[sizeof record];
    SwapData(header, record, fields, sizeof record);

    /* The same fields as codes, in place: one of 32 bits, two of 16, 4 bytes kept, one of 64. */
    static const uint8_t codes[] = {7, 16, 6, 11, 0};
    size_t taken = 0;
    if (!SwapRecordWithin(record, sizeof record, codes, sizeof codes, &taken)) return 0;

    unsigned char samples24[6] = {1, 2, 3, 4, 5, 6};
    ProcessSwapIntel(samples24, 2, 0, 24);
    return memcmp(header, record, sizeof header) == 0 && header[2] == 0xBB && header[19] == 1 &&
           taken == sizeof record && memcmp(samples24, "\3\2\1\6\5\4", 6) == 0;
}

static int checksums(void) {
    const char chunk[] = "data and all that follows";
    uint32_t sum = QKCRC32(0, chunk, 4); /* in pieces, as they come */
    sum = QKCRC32(sum, chunk + 4, strlen(chunk) - 4);
    printf("CRC-32 %08x, CRC-16 of the name %04x\n", (unsigned)sum, (unsigned)QKCRC16("Kick.wav"));
    return sum == QKCRC32(0, chunk, strlen(chunk)) && QKCRC16("123456789") == 0xE5CC;
}

static int names(void) {
    const char* const name = "Caf\xC3\xA9 \xE2\x99\xAA.wav";
    char field[8]; /* "Café " fits with its terminator; the note, of three bytes, does not */
    if (!utf8_check(name)) return 0;
    utf8_strlcpy(field, name, sizeof field);
    printf("\"%s\", %zu plain characters first\n", field, utf8_strlen(field));
    return strcmp(field, "Caf\xC3\xA9 ") == 0 && !utf8_is_ascii(field, 0) &&
           utf8_is_ascii(field, 3);
}

int main(void) {
    const int passed = samples() + other_byte_order() + checksums() + names();
    printf("%d of 4 as expected\n", passed);
    return passed == 4 ? 0 : 1;
}
