// SPDX-License-Identifier: Apache-2.0
//
// Everything that a player may do with a file, done to one input: see exercise().
#pragma once

#include <cstddef>
#include <cstdint>

#include "service/PluginLibrary.h"

namespace avifuzz {

/**
 * Opens the bytes as a file, asks every query, starts every track, reads each from its beginning,
 * then reads after seeks, and frees everything. The switches of the log, and the tracks, modes and
 * times of the seeks are taken from the last bytes of the input, which stay part of the file.
 * Aborts when the plug-in breaks its contract with the player: a buffer without a time, or buffers
 * kept after the stop. One thread.
 */
void exercise(const android::service::PluginLibrary& plugin, const uint8_t* data, size_t size);

}  // namespace avifuzz
