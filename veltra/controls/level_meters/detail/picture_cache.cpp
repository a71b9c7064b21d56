// SPDX-License-Identifier: MIT
#include "veltra/controls/level_meters/detail/picture_cache.h"

#include "veltra/base/immortal.h"
#include "veltra/ui/port.h"

#include <algorithm>
#include <vector>

namespace veltra::detail {

namespace {

constexpr std::size_t kCapacity = 32;

struct Entry {
    std::shared_ptr<const LevelMeterLook> look;  // kept, so that its address stays its own
    const UiPort* port;                          // whose images they are
    MeterPart part;
    LevelMeterPictureRequest request;
    LevelMeterPicture picture;
};

std::vector<Entry>& entries() {  // the one used last comes first
    static const Immortal<std::vector<Entry>> entries;
    return *entries;
}

}  // namespace

LevelMeterPicture meterPicture(const std::shared_ptr<const LevelMeterLook>& look, MeterPart part,
                               const LevelMeterPictureRequest& request) {
    const UiPort* const port = &UiPort::current();
    std::vector<Entry>& all = entries();
    const auto found = std::find_if(all.begin(), all.end(), [&](const Entry& entry) {
        return entry.look == look && entry.port == port && entry.part == part &&
               entry.request == request;
    });
    if (found != all.end()) {
        std::rotate(all.begin(), found, found + 1);
        return all.front().picture;
    }
    LevelMeterPicture picture = part == MeterPart::Bar ? look->bar(request) : look->light(request);
    if (!picture.off && !picture.on) return picture;
    if (all.size() >= kCapacity) all.pop_back();
    all.insert(all.begin(), Entry{look, port, part, request, picture});
    return picture;
}

}  // namespace veltra::detail
