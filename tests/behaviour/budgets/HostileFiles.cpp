// SPDX-License-Identifier: Apache-2.0

#include "tests/behaviour/budgets/HostileFiles.h"

namespace avitest {

std::vector<HostileFile> hostileFiles() {
    std::vector<HostileFile> all;
    for (const auto& files : {hostileHeaders(), hostileSegments(), hostileScans(), hostileIndexes(),
                              hostileSamples()}) {
        all.insert(all.end(), files.begin(), files.end());
    }
    return all;
}

}  // namespace avitest
