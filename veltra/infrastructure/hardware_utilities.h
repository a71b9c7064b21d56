// SPDX-License-Identifier: MIT
// Questions about the machine, by which applications choose defaults.
//
//   QKHardwareUtilities* const machine = QKHardwareUtilities::sharedHardwareUtilities();
//   if (machine->cpuCount() > 2 && machine->physicalRAM64() > kPlenty) ...
//
// The answers come from SystemQueries (system_queries.h) and OpticalDrives (optical_drives.h),
// which a host can replace. What the system does not say is 0, false or, for the boot time, -1;
// nothing is logged. Answers of 32 bits saturate: more than they can hold is the largest number,
// never a remainder. For C, see hardware.h.
#pragma once

#include "veltra/export.h"
#include "veltra/infrastructure/singleton.h"

#include <atomic>
#include <cstdint>
#include <string_view>

namespace veltra {

// Thread: any, unless a line says otherwise. Realtime-safe: no.
class VELTRA_EXPORT QKHardwareUtilities : public QKSingleton {
public:
    static SlotClass<> s_class;  // "QKHardwareUtilities"
    Class& classObject() const noexcept override { return s_class; }

    // The shared instance; null when memory is out. For a derived class with a slot of its own:
    // sharedHardwareUtilities<Mine>().
    template <class T = QKHardwareUtilities>
    static T* sharedHardwareUtilities() {
        return static_cast<T*>(T::s_class.sharedInstance());
    }

    // Processors that the process may run on: those of its main thread. A share of processor time
    // that a container grants is not a number of processors and does not count. Asked once and
    // kept.
    std::uint32_t cpuCount();

    // The processor's frequency in megahertz, rounded down, and in hertz.
    std::uint32_t cpuClockSpeed() const;
    std::uint64_t cpuFrequency() const;

    // Whether the processor computes with vectors, and with floating-point numbers, as far as the
    // system says.
    bool hasVectorUnit() const;
    bool hasFloatingPoint() const;

    // Bytes of memory that the machine has; limits of control groups do not count
    // (memory_system.h).
    std::uint32_t physicalRAM() const;
    std::uint64_t physicalRAM64() const;

    // The numbers of the processor's kind, as SystemKey describes them. They are bit patterns: one
    // that does not fit 32 bits counts as unknown.
    std::int32_t machineCpuType() const;
    std::int32_t machineCpuSubtype() const;
    std::int32_t machineCpuFamily() const;

    // The class of the processor. Asked once and kept.
    //
    //   1  PowerPC without a vector unit, and deliberately every processor that is neither PowerPC
    //      nor x86
    //   2  PowerPC with a vector unit
    //   3  PowerPC of a native type above 312: with 64 bits
    //   4  x86 of the family 0x73D67300
    //   5  x86 of the family 0x426F69EF
    //   6  any other x86
    std::int32_t cpuType();

    // Whether there is a drive that reads DVD or Blu-ray discs. Each call counts the drives again.
    // Thread: one at a time.
    bool systemHasDVDDrive();

    // Called by systemHasDVDDrive() for each drive: counts a name in which "IODVDServices" or
    // "IOBDServices" occurs.
    virtual void _deviceAddedWithName(std::string_view name);

    // Stores the resident and the virtual size of this process, in bytes. When the system does not
    // say, stores 0 in both and returns false. Either pointer may be null; then that size is not
    // stored.
    bool getRSIZE(std::uint64_t* resident, std::uint64_t* virtualSize) const;

    // When the machine started, in seconds since 1970 (UTC); -1 when unknown. The answer changes
    // when the clock is set. The 32-bit one ends in 2038.
    std::int32_t boottime() const;
    std::int64_t boottime64() const;

private:
    // Atomic, relaxed: threads that ask first compute the same.
    std::atomic<std::int32_t> m_nDVDDrives{0};
    std::atomic<std::int32_t> m_cpuType{0};
    std::atomic<std::uint32_t> m_cpuCount{0};
};

}  // namespace veltra
