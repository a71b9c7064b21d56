// SPDX-License-Identifier: MIT
// Ownership of libsndfile's handle.
#pragma once

#include <memory>

#include <sndfile.h>

namespace veltra::console {

struct SoundCloser {
    void operator()(SNDFILE* file) const noexcept { sf_close(file); }
};
using SoundHandle = std::unique_ptr<SNDFILE, SoundCloser>;

}  // namespace veltra::console
