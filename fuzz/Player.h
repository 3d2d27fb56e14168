// SPDX-License-Identifier: Apache-2.0
//
// A player that does with a file what orders say: any call in any order that the contract with the
// plug-in allows. Ends the process when the plug-in breaks its side of it: a buffer without a time,
// a status that does not fit the buffer, buffers kept after the stop. One thread.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "fuzz/Orders.h"
#include "service/Extractor.h"
#include "service/PluginLibrary.h"

namespace avifuzz {

class Playing;

class Player {
  public:
    /** Both must outlive the player. */
    Player(const android::service::PluginLibrary& plugin, android::service::DataSource& source);
    Player(const Player&) = delete;
    Player& operator=(const Player&) = delete;
    ~Player();

    /** Sets the switches that the next extractor reads: the lowest three bits. */
    static void setSwitches(unsigned bits);

    /** Opens the file by an extractor of its own; false when the plug-in refuses it. */
    bool open();
    /** Asks the extractor opened last everything; `first` says with which query to begin. */
    void query(unsigned first) const;
    /** Makes and starts a source of each track, up to a limit. */
    void startTracks();
    /** Obeys orders until they are used up. */
    void obey(Orders* orders);
    /** Reads all started tracks from where they are to their ends, up to a limit. */
    void readThrough();
    /** Lets go of all sources, in the order of their making or backwards, then of the file. */
    void close(bool backwards);

  private:
    void obeyOne(Orders* orders);
    void addTrack(size_t index);
    void removeTrack(Orders* orders);
    void reopen(Orders* orders);
    void ask(Orders* orders);
    Playing* chosen(Orders* orders);

    const android::service::PluginLibrary& mPlugin;
    android::service::DataSource& mSource;
    std::unique_ptr<android::service::Extractor> mExtractor;  // its tracks keep it alive
    std::vector<std::unique_ptr<Playing>> mTracks;
};

}  // namespace avifuzz
