// SPDX-License-Identifier: MIT
/* Which variant of each kernel this processor runs, and a comparison with the plain one, from C. */
#include "veltra/processor/checksum.h"
#include "veltra/processor/variants.h"

#include <stdio.h>

int main(void) {
    for (uint32_t family = 0; family < VLKernelFamilyCount(); ++family) {
        const char* name = VLKernelFamilyName(family);
        printf("%s runs as %s of", name, VLKernelFamilyInForce(name));
        for (uint32_t variant = 0; variant < VLKernelVariantCount(name); ++variant) {
            const char* can = VLKernelVariantRuns(name, variant) ? "" : " (not here)";
            printf(" %s%s", VLKernelVariantName(name, variant), can);
        }
        printf("\n");
    }

    const char digits[] = "123456789";
    const uint32_t best = QKCRC32(0, digits, sizeof digits - 1);
    VLKernelFamilyUse("crc32", "plain"); /* as a test or a bug report would */
    const uint32_t plain = QKCRC32(0, digits, sizeof digits - 1);
    VLKernelFamilyUse("crc32", NULL);
    printf("the same checksum by either: %08X %08X\n", (unsigned)best, (unsigned)plain);
    return best == plain && plain == 0xCBF43926 && VLKernelsPrepare() ? 0 : 1;
}
