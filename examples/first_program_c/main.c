// SPDX-License-Identifier: MIT
/* The first program again, in C11: cc main.c $(pkg-config --cflags --libs veltra) */
#include "veltra/diagnostics/log.h"
#include "veltra/processor/byte_order.h"
#include "veltra/processor/sample_conversion.h"

#include <stdio.h>

int main(void) {
    const unsigned char big_endian[] = {0x80, 0x00, 0x40, 0x00, 0x7F, 0xFF};
    float samples[3];
    unsigned char word[4] = {1, 2, 3, 4};
    GetConvertNToFloat(kVLSampleInt16, false)(samples, big_endian, 3, NULL);
    SwapInt32(word);
    QKLogCString(kLogInfo, QKLogWithSyslogBanner(), "first-program",
                 "%.6f %.6f %.6f, first byte %d", (double)samples[0], (double)samples[1],
                 (double)samples[2], word[0]);
    return samples[0] == -1.0F && samples[1] == 0.5F && word[0] == 4 ? 0 : 1;
}
