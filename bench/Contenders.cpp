// SPDX-License-Identifier: Apache-2.0
#include "bench/Contenders.h"

#include "bench/Floor.h"
#include "bench/Libavformat.h"
#include "bench/Ours.h"

namespace avibench {

namespace {

template <typename T, typename... Arguments>
auto makerOf(Arguments... arguments) {
    return [arguments...](const Shape&, const Layout&) -> std::unique_ptr<Contender> {
        return std::make_unique<T>(arguments...);
    };
}

std::unique_ptr<Contender> makeFloor(const Shape& shape, const Layout& layout) {
    return std::make_unique<Floor>(shape, layout);
}

}  // namespace

const std::vector<ContenderKind>& contenders() {
    using Parsers = Libavformat::Parsers;
    static const auto* const kAll = new std::vector<ContenderKind>{
        {"ours", true, true, makerOf<Ours>()},
        {"libavformat", true, false, makerOf<Libavformat>(Parsers::kUsed)},
        {"libavformat-noparse", false, false, makerOf<Libavformat>(Parsers::kNone)},
        {"floor", true, true, makeFloor},
    };
    return *kAll;
}

}  // namespace avibench
