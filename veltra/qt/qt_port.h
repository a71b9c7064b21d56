// SPDX-License-Identifier: MIT
// Puts Veltra's views on Qt: windows, timers, text, pictures, tool tips and accessibility. A
// ViewWidget does this by itself; a program that only has windows of its own calls installQtPort().
//
// Thread: main, for everything in here. Realtime-safe: no.
#pragma once

#include "veltra/export.h"
#include "veltra/ui/appearance.h"
#include "veltra/ui/image.h"

#include <QImage>
#include <memory>
#include <optional>

namespace veltra {

// Puts the port in force, and with it a run loop for the main thread that Qt's event loop drives;
// further calls do nothing. Call it when the QApplication exists and before the first timer is
// started: timers of the run loop before wait until that one is back. When the QApplication is
// destroyed, everything is taken down again; windows that outlive it stay as they are, off screen.
// Returns false, and does nothing, when there is no QApplication.
VELTRA_EXPORT bool installQtPort();

// Light or dark for all windows, whatever the palettes of Qt say; nothing goes back to those.
// Forgotten when the QApplication ends. Does nothing while the port is not in force.
VELTRA_EXPORT void setQtAppearance(std::optional<Appearance> appearance);

// The pixels of a picture, with its scale as device pixel ratio.
VELTRA_EXPORT QImage toQImage(const Image& image);

// A picture to be drawn by views; its scale is the device pixel ratio. Null for a null image.
VELTRA_EXPORT std::shared_ptr<const Image> fromQImage(const QImage& image);

}  // namespace veltra
