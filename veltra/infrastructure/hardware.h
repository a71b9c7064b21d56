// SPDX-License-Identifier: MIT
// For C and every language that can call it: the questions about the machine. Each function asks
// the member of QKHardwareUtilities of that name (hardware_utilities.h), which says what the answer
// is. The neutral answers (0, false, -1) also stand for "memory is out".
//
// Thread: any; for VLHardwareSystemHasDVDDrive one at a time. Realtime-safe: no.
#pragma once

#include "veltra/base/string_object.h"
#include "veltra/c_linkage.h"

#include <stdbool.h>
#include <stdint.h>

VELTRA_C_BEGIN

// Processors that the process may run on.
VELTRA_EXPORT uint32_t VLHardwareCpuCount(void) VELTRA_NOEXCEPT;

// The processor's frequency.
VELTRA_EXPORT uint32_t VLHardwareCpuClockSpeed(void) VELTRA_NOEXCEPT;  // megahertz
VELTRA_EXPORT uint64_t VLHardwareCpuFrequency(void) VELTRA_NOEXCEPT;   // hertz

// Whether the processor computes with vectors, and with floating-point numbers.
VELTRA_EXPORT bool VLHardwareHasVectorUnit(void) VELTRA_NOEXCEPT;
VELTRA_EXPORT bool VLHardwareHasFloatingPoint(void) VELTRA_NOEXCEPT;

// The machine's memory in bytes; at most 4,294,967,295 by the first.
VELTRA_EXPORT uint32_t VLHardwarePhysicalRAM(void) VELTRA_NOEXCEPT;
VELTRA_EXPORT uint64_t VLHardwarePhysicalRAM64(void) VELTRA_NOEXCEPT;

// The numbers of the processor's kind, bit patterns; and its class, 1 to 6.
VELTRA_EXPORT int32_t VLHardwareMachineCpuType(void) VELTRA_NOEXCEPT;
VELTRA_EXPORT int32_t VLHardwareMachineCpuSubtype(void) VELTRA_NOEXCEPT;
VELTRA_EXPORT int32_t VLHardwareMachineCpuFamily(void) VELTRA_NOEXCEPT;
VELTRA_EXPORT int32_t VLHardwareCpuType(void) VELTRA_NOEXCEPT;

// Whether there is a drive that reads DVD or Blu-ray discs. Thread: one at a time.
VELTRA_EXPORT bool VLHardwareSystemHasDVDDrive(void) VELTRA_NOEXCEPT;

// Stores how many bytes the process has in memory, and in its address space; each pointer may be
// null. Returns false, and stores 0, when the system does not say.
VELTRA_EXPORT bool VLHardwareGetSizes(uint64_t* resident, uint64_t* virtual_size) VELTRA_NOEXCEPT;

// When the machine started, in seconds since 1970; -1 when unknown. The first ends in 2038.
VELTRA_EXPORT int32_t VLHardwareBootTime(void) VELTRA_NOEXCEPT;
VELTRA_EXPORT int64_t VLHardwareBootTime64(void) VELTRA_NOEXCEPT;

// The text of hardwareReport() (hardware_report.h). The caller releases it with VLStringRelease.
// Null when memory is out.
VELTRA_EXPORT const VLString* VLHardwareCreateReport(void) VELTRA_NOEXCEPT;

VELTRA_C_END
