// SPDX-License-Identifier: MIT
// The surround formats that hosts mix in: the channels of each, their names and directions, and the
// way there and back to Core Audio's layout tags and channel labels.
//
// Formats, channel IDs, tags and labels are plain numbers here; surround_names.h names them for
// C++. A format is one of
//    1 mono              0                        5 5.1                 0 1 4 5 7 8
//    2 stereo            0 1                      6 6.1                 0 1 4 5 6 7 8
//    3 quadraphonic      0 1 4 5                  7 7.1, mid            0 1 2 3 4 5 7 8
//    4 LCRS              0 1 6 7                  8 7.1, centre left
//                                                   and right           0 1 4 5 7 8 9 10
// and the channel IDs beside it are 0 L, 1 R, 2 Lm, 3 Rm, 4 Ls, 5 Rs, 6 Cs, 7 C, 8 LFE, 9 Lc,
// 10 Rc. A mapping is 8 channel IDs, one for each position of a layout; positions that the layout
// does not have hold 0.
//
// All functions but the three of the settable table only read constants.
// Thread: any. Realtime-safe: yes.
#pragma once

#include "veltra/c_linkage.h"

#include <stdbool.h>
#include <stdint.h>

VELTRA_C_BEGIN

// Bit n is set when the format holds channel ID n; 0 for an unknown format.
VELTRA_EXPORT uint32_t GetChannelIDBitMask(uint32_t format) VELTRA_NOEXCEPT;

// The short name of a channel, "L" to "Rc", a constant; empty for an unknown ID.
VELTRA_EXPORT const char* GetChannelLabel(uint32_t channelID) VELTRA_NOEXCEPT;

// The direction in which a channel is heard by default, in degrees: 0 is ahead, negative is left.
// 1000 marks the LFE channel, which has no direction. 0 for a channel that the format does not
// hold. Format 8 deliberately has its pairs at 45 and 135 degrees, wider than formats 5 to 7: its
// centre left and right fill the front.
VELTRA_EXPORT float GetAngleForChannel(uint32_t format, uint32_t channelID) VELTRA_NOEXCEPT;

// A table of angles in degrees that belongs to the host: the framework neither fills nor reads it.
// All 0 at the start, never reset. A format has a row of 8, for the channel IDs 0 to 7. The place
// of an angle is format * 8 + channel ID. So an ID above 7 deliberately shares its place with the
// next row: hosts keep to 0 to 7, or use the rows for what they like. There are 10 rows, 0 to 9.
// AngleForChannelTab returns the address of a row. Beyond the rows AngleForChannel returns 0,
// SetAngleForChannel does nothing, and AngleForChannelTab returns null.
// Thread: any, but plain memory: no thread may write while another reads. Realtime-safe: yes.
VELTRA_EXPORT float AngleForChannel(uint32_t format, uint32_t channelID) VELTRA_NOEXCEPT;
VELTRA_EXPORT void SetAngleForChannel(uint32_t format, uint32_t channelID,
                                      float angle) VELTRA_NOEXCEPT;
VELTRA_EXPORT float* AngleForChannelTab(uint32_t format) VELTRA_NOEXCEPT;

// The format that a layout tag stands for, and in `mapping`, 8 IDs or null, its order of channels.
// 0, with `mapping` left as it is, for an unknown tag and for the two that stand for no order of
// their own: 0 (channel descriptions) and 0x10000 (a channel bitmap).
VELTRA_EXPORT uint32_t FindFormatForAudioChannelLayoutTag(uint32_t layoutTag,
                                                          uint32_t* mapping) VELTRA_NOEXCEPT;

// The order of channels that a tag gives a format; tag 0 asks for the format's own order. False,
// with `mapping` (8 IDs, or null) left as it is, when the tag is not one of the format's.
VELTRA_EXPORT bool GetMappingForFormatAndAudioChannelLayoutTag(uint32_t format, uint32_t layoutTag,
                                                               uint32_t* mapping) VELTRA_NOEXCEPT;

// Core Audio's label of a channel: 42 for mono's only one; 100, the label of channels that are
// told by their coordinates, for a channel that the format does not hold, for an unknown format,
// and for every channel of format 7.
VELTRA_EXPORT uint32_t GetLabelForChannelID(uint32_t format, uint32_t channelID) VELTRA_NOEXCEPT;

VELTRA_C_END
