// SPDX-License-Identifier: Apache-2.0
#include "fuzz/Exercise.h"

#include "fuzz/Player.h"

namespace avifuzz {

void exercise(const android::service::PluginLibrary& plugin, android::service::DataSource& source,
              Orders orders) {
    const unsigned switches = orders.byte();
    const unsigned way = orders.byte();
    Player player(plugin, source);
    Player::setSwitches(switches);
    if (!player.open()) return;
    player.query(way / 4);
    player.startTracks();
    if (way % 2 != 0) player.readThrough();
    player.obey(&orders);
    player.readThrough();
    player.close((way & 2) != 0);
}

}  // namespace avifuzz
