// SPDX-License-Identifier: Apache-2.0
#include "fuzz/Exercise.h"

#include "fuzz/OpeningWatch.h"
#include "fuzz/Player.h"

namespace avifuzz {

namespace {

constexpr unsigned kLogSwitches = 3;  // of Player::setSwitches()

}  // namespace

void exercise(const android::service::PluginLibrary& plugin, android::service::DataSource& source,
              uint64_t fileSize, Orders orders) {
    const unsigned switches = orders.byte();
    const unsigned way = orders.byte();
    MeasuredSource measured(source);
    Player player(plugin, measured);
    Player::setSwitches(switches);
    {
        const OpeningWatch watch(measured);
        if (!player.open()) return;
        player.query(way / 4);
        watch.check(fileSize, (switches & kLogSwitches) == 0);
    }
    player.startTracks();
    if (way % 2 != 0) player.readThrough();
    player.obey(&orders);
    player.readThrough();
    player.close((way & 2) != 0);
}

}  // namespace avifuzz
