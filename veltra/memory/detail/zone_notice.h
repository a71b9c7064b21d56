// SPDX-License-Identifier: MIT
// Tells whoever reads the log when the services on the zone are called in vain.
#pragma once

namespace veltra {

// Logs one warning, once in the life of the process, when the zone in force is the process's own
// and no allocation of the process reaches it. errno stays as it was.
// Thread: any but audio. Realtime-safe: no.
void noticeUncoveredZone() noexcept;

}  // namespace veltra
