// SPDX-License-Identifier: MIT
// What must not be lost: the takes. A document is a folder with one file for each take, 24-bit
// samples, and a table of contents with their checksums.
#pragma once

#include "samples.h"

#include <string>
#include <vector>

namespace veltra::survivor {

class Document {
public:
    static constexpr std::size_t kTakeFrames = 524'288;  // of a take, stereo
    static constexpr std::size_t kMostTakes = 4096;
    static constexpr std::size_t kChunkFrames = 65'536;
    static constexpr std::size_t kSavingBytes = kChunkFrames * 6;  // memory that saving needs

    // Makes the folder. Throws what std::filesystem throws.
    explicit Document(std::string folder);

    // The left channel's kTakeFrames, then the right one's. False when memory is out or the
    // document is full.
    bool add(Samples take) noexcept;
    std::size_t takeCount() const noexcept { return m_takes.size(); }

    // Writes the takes that are not stored yet, then the contents. With false the contents are
    // those of the last time.
    bool save() noexcept;

    // Gives back the memory of the takes that are stored.
    Dropped unloadStored() noexcept;

    // Reads everything back and compares it with the checksums from the time of recording.
    bool isIntact() const;

private:
    struct Take {
        Samples samples;  // null: only in its file
        std::uint32_t checksum;
        bool isStored;
    };

    bool writeTake(const Take& take, std::size_t number, unsigned char* chunk) const noexcept;
    bool writeContents() const noexcept;

    std::string m_folder;
    std::vector<Take> m_takes;
};

}  // namespace veltra::survivor
