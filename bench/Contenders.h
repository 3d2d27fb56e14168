// SPDX-License-Identifier: Apache-2.0
//
// All that are compared.
#pragma once

#include <functional>
#include <memory>
#include <string_view>
#include <vector>

#include "bench/AviWriter.h"
#include "bench/Contender.h"

namespace avibench {

struct ContenderKind {
    std::string_view name;
    bool opens;  // false: opens and seeks as another one does
    bool scans;  // opening finds the samples of a file without an index; else reading does
    std::function<std::unique_ptr<Contender>(const Shape&, const Layout&)> make;
};

// The plug-in comes first.
const std::vector<ContenderKind>& contenders();

}  // namespace avibench
