// SPDX-License-Identifier: Apache-2.0

#include "tests/behaviour/seeking/BlockFile.h"

namespace avitest {

BlockFile blockFile(const std::vector<int>& blocks) {
    BlockFile file;
    const size_t stream = file.avi.addStream(mp3Frames());
    int number = 0;
    for (size_t chunk = 0; chunk < blocks.size(); ++chunk) {
        Bytes data;
        for (int i = 0; i < blocks[chunk]; ++i, ++number) {
            const auto seed = static_cast<uint32_t>(number);
            Bytes block = noise(kBlockBytes, 5000 + seed);
            if (chunk > 0) {
                const Bytes first = frame(seed);
                file.firstFrames[first] = number;
                // Two in a row make the stream's header credible.
                const bool confirms = chunk == 1 && i == 0;
                block = joined({first, confirms ? frame(seed + 9000) : Bytes(), block});
                block.resize(kBlockBytes);
            }
            data = joined({data, block});
        }
        file.avi.addChunk(stream, data);
    }
    return file;
}

}  // namespace avitest
