// SPDX-License-Identifier: MIT
#include "file_progress.h"

#include "text.h"

#include <algorithm>

namespace veltra::console {

namespace {

VLProgressIndicator* acquire(const std::string& path) {
    const std::string name = printable(path.substr(path.find_last_of('/') + 1));
    const VLString* const title = VLStringCreateWithUtf8(name.data(), name.size());
    VLProgressIndicator* const indicator =
        VLAcquireProgressIndicator(title, kVLProgressIndicatorEmptyID);
    VLStringRelease(title);
    return indicator;
}

}  // namespace

FileProgress::FileProgress(const AudioFile& file)
    : m_file(file), m_indicator(acquire(file.path())) {}

// Posted, because files are read in thousands of chunks a second.
bool FileProgress::goOn() noexcept {
    const FileFormat& format = m_file.format();
    if (!format.lengthUnknown && format.frames > 0) {
        const double share =
            static_cast<double>(m_file.framesRead()) / static_cast<double>(format.frames);
        VLPostProgressIndicatorValue(m_indicator, std::min(share, 1.0));
        VLDeliverProgressIndicatorUpdates(m_indicator);
    }
    return !VLProgressIndicatorIsCancelled(m_indicator);
}

}  // namespace veltra::console
