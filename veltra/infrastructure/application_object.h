// SPDX-License-Identifier: MIT
// The object that stands for the running application, where a host has one among its counted
// objects. The framework looks only at its class: isRunningAsProApp() in environment.h.
//
//   veltra::setApplicationObject(MixerApplication::sharedInstance());    // at start
#pragma once

#include "veltra/export.h"

namespace veltra {

class Object;

// The application object; null, as at first, when there is none. It is not retained: set null
// before it dies.
// Thread: any. Realtime-safe: yes.
VELTRA_EXPORT void setApplicationObject(const Object* application) noexcept;
VELTRA_EXPORT const Object* applicationObject() noexcept;

}  // namespace veltra
