// SPDX-License-Identifier: MIT
// The volumes (mounted file systems) that files lie on.
#pragma once

#include "veltra/base/installable.h"
#include "veltra/export.h"

#include <optional>
#include <string>

namespace veltra {

class Volumes;
extern template class VELTRA_EXPORT Installable<Volumes>;

struct Volume {
    std::string path;            // where it is mounted, for instance "/media/disc"
    bool isRemovable = false;    // the medium, or the drive with it, can be taken out
    bool isWritable = false;     // not mounted read-only; a file's own permissions come on top
    bool isUnmountable = false;  // can go while the system runs: not mounted at "/"
    std::string description;     // what is mounted, for instance "/dev/sr0"
    std::string type;            // the system's name for the kind of file system: "iso9660"
};

class VELTRA_EXPORT Volumes : public Installable<Volumes> {
public:
    virtual ~Volumes();

    // The volume on which the item `path` lies; a link in the path's last step is followed. Nothing
    // when there is no such item, when the system does not tell, and when memory is out.
    // Thread: any. Realtime-safe: no (it asks the system anew at each call).
    virtual std::optional<Volume> volumeOfPath(const std::string& path) noexcept = 0;
};

}  // namespace veltra
