// SPDX-License-Identifier: MIT
// Both ways to reach the one instance, in a source of their own: hosts call across sources.
#pragma once

void* sharedMixer();
void* staticMixer();
