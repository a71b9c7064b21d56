// SPDX-License-Identifier: MIT
// Images that are found by a name or a number, in this order: what the host has registered, the
// files of the image folder, what the framework itself draws.
//
//   setImageFolder("/usr/share/mixer/images");          // holds knob.png and knob@2x.png
//   auto knob = findImage("knob", window.scale());
//   registerImage(7, [](float scale) { return drawnKnob(scale); });
//
// Thread: main, for everything in here. Realtime-safe: no.
#pragma once

#include "veltra/export.h"
#include "veltra/ui/image.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <variant>

namespace veltra {

// Numbers and names are kept apart: 7 is not "7".
using ImageKey = std::variant<std::int32_t, std::string>;

// Makes the image for a number of pixels a point; may return null, and need not hit the scale.
using ImageMaker = std::function<std::shared_ptr<const Image>(float scale)>;

// The host's own. It stands before all others with this key; null takes it away again.
VELTRA_EXPORT void registerImage(ImageKey key, ImageMaker maker);

// What a control draws where the host has neither registered nor supplied an image of this key.
VELTRA_EXPORT void registerDefaultImage(ImageKey key, ImageMaker maker);

// Where files lie that are found by their name: NAME.png for one pixel a point, NAME@2x.png and
// NAME@3x.png for two and three. The smallest that is large enough is taken, else the largest there
// is. Empty, as at first: no files.
VELTRA_EXPORT void setImageFolder(std::string path);

// Null when there is none. An image is kept for the next call with the same key and scale, until a
// registration, the folder or the toolkit changes; what was not found is looked for again.
VELTRA_EXPORT std::shared_ptr<const Image> findImage(const ImageKey& key, float scale = 1.0F);

}  // namespace veltra
