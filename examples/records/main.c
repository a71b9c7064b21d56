// SPDX-License-Identifier: MIT
/* Byte order, from C: a record of a little-endian file turned round field by field. */
#include "veltra/processor/byte_order.h"
#include "veltra/processor/record_swap.h"

#include <stdio.h>
#include <string.h>

/* A 32-bit length, two 16-bit counts, a 4-byte name that stays as it is, a 64-bit position. */
static const uint8_t table[] = {7, 16, 6, 11, 0};

int main(void) {
    unsigned char record[20] = {0x10, 0,   0, 0, 2, 0, 44, 1, 'n', 'a',
                                'm',  'e', 1, 0, 0, 0, 0,  0, 0,   0};
    const unsigned char big_endian[20] = {0,   0,   0, 0x10, 0, 2, 1, 44, 'n', 'a',
                                          'm', 'e', 0, 0,    0, 0, 0, 0,  0,   1};
    unsigned char samples[6] = {1, 2, 3, 4, 5, 6};

    if (!SwapRecordWithin(record, sizeof record, table, sizeof table, NULL)) return 1;
    for (size_t i = 0; i < sizeof record; ++i)
        printf("%02x ", record[i]);
    ProcessSwapIntel(samples, 2, 0, 24);
    size_t taken = 0;
    const bool whole = SwapRecordWithin(record, 13, table, sizeof table, &taken);
    printf("\nof a record cut after 13 bytes, the first %zu are fields", taken);
    SwapRecordWithin(record, taken, table, sizeof table, NULL); /* those back again */
    printf("\n24-bit samples: %d %d %d, %d %d %d\n", samples[0], samples[1], samples[2], samples[3],
           samples[4], samples[5]);
    const bool stopped = !whole && taken == 12;
    return stopped && memcmp(record, big_endian, sizeof record) == 0 && samples[0] == 3 ? 0 : 1;
}
