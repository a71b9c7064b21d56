// SPDX-License-Identifier: MIT
#include "veltra/diagnostics/log.h"
#include "veltra/processor/sample_conversion.h"

int main() {
    const unsigned char bigEndian[] = {0x80, 0x00, 0x40, 0x00, 0x7F, 0xFF};
    float samples[3];
    veltra::GetConvertNToFloat(veltra::kSampleInt16, false)(samples, bigEndian, 3, nullptr);
    veltra::QKLogCString(veltra::kLogInfo, veltra::QKLogWithSyslogBanner(), "first-program",
                         "16-bit samples: %.6f %.6f %.6f", samples[0], samples[1], samples[2]);
}
