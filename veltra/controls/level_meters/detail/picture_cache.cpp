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
    MeterPictureKey key;  // keeps the looks, so that their addresses stay their own
    const UiPort* port;   // whose images they are
    LevelMeterPicture picture;
};

std::vector<Entry>& entries() {  // the one used last comes first
    static const Immortal<std::vector<Entry>> entries;
    return *entries;
}

}  // namespace

LevelMeterPicture meterPicture(const MeterPictureKey& key,
                               const std::function<LevelMeterPicture()>& make) {
    const UiPort* const port = &UiPort::current();
    std::vector<Entry>& all = entries();
    const auto found = std::find_if(all.begin(), all.end(), [&](const Entry& entry) {
        return entry.key == key && entry.port == port;
    });
    if (found != all.end()) {
        std::rotate(all.begin(), found, found + 1);
        return all.front().picture;
    }
    LevelMeterPicture picture = make();
    if (!picture.off && !picture.on) return picture;
    if (all.size() >= kCapacity) all.pop_back();
    all.insert(all.begin(), Entry{key, port, picture});
    return picture;
}

}  // namespace veltra::detail
