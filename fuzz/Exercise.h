// SPDX-License-Identifier: Apache-2.0
//
// Everything that a player may do with a file, done to one input: see exercise().
#pragma once

#include <cstdint>

#include "fuzz/Orders.h"
#include "service/DataSource.h"
#include "service/PluginLibrary.h"

namespace avifuzz {

/**
 * Opens the source, whose size for the budgets is `fileSize`, asks every query, starts every track,
 * does what the orders say, reads all tracks to their ends and frees everything. Ends the process
 * when opening costs more than fuzz/Budgets.h allows, or when the plug-in breaks its contract with
 * the player. One thread.
 */
void exercise(const android::service::PluginLibrary& plugin, android::service::DataSource& source,
              uint64_t fileSize, Orders orders);

}  // namespace avifuzz
