// SPDX-License-Identifier: MIT
// How far a file has been read, told to whoever provides the progress service; and the wish to stop
// that comes back from there.
#pragma once

#include "audio_file.h"
#include "veltra/infrastructure/progress_indicator.h"

namespace veltra::console {

// Values go from 0 to 1; there are none when the file does not say how long it is.
// Thread: the one that reads the file; it also makes and destroys this. Realtime-safe: no.
class FileProgress {
public:
    explicit FileProgress(const AudioFile& file);
    FileProgress(const FileProgress&) = delete;
    FileProgress& operator=(const FileProgress&) = delete;
    ~FileProgress() { VLReleaseProgressIndicator(m_indicator); }

    // Tells how many frames of the file have been read. Answers false when the user wants no more.
    bool goOn() noexcept;

private:
    const AudioFile& m_file;
    VLProgressIndicator* const m_indicator;  // null when memory was out; all takes it
};

}  // namespace veltra::console
