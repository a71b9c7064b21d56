// SPDX-License-Identifier: MIT
// The drives for optical media (CD, DVD, Blu-ray) that the machine has at the moment.
#pragma once

#include "veltra/base/installable.h"
#include "veltra/export.h"

#include <string>
#include <vector>

namespace veltra {

class OpticalDrives;
extern template class VELTRA_EXPORT Installable<OpticalDrives>;

struct OpticalDrive {
    std::string deviceName;  // the system's name for the device, for instance "sr0"
    // After the best medium that the drive reads: "IOBDServices" (Blu-ray), "IODVDServices" (DVD)
    // or "IOCDServices" (CD).
    std::string className;
};

class VELTRA_EXPORT OpticalDrives : public Installable<OpticalDrives> {
public:
    virtual ~OpticalDrives();

    // The drives present now, each once, with or without a disc. Empty when there are none, when
    // the system does not tell, and when memory is out.
    // Thread: any. Realtime-safe: no (it asks the system anew at each call).
    virtual std::vector<OpticalDrive> list() noexcept = 0;
};

}  // namespace veltra
