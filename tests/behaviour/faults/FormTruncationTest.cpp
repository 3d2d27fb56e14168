// SPDX-License-Identifier: Apache-2.0
//
// Files of all forms that end early, at every byte.

#include "tests/behaviour/faults/FormFiles.h"
#include "tests/behaviour/robustness/Endurance.h"

namespace avitest {
namespace {

class FormTruncation : public QuietTest, public ::testing::WithParamInterface<FormFile> {};

TEST_P(FormTruncation, AtEveryByteComesToAnEnd) {
    const Bytes& file = GetParam().bytes;
    for (size_t length = 0; length <= file.size(); ++length) {
        // A copy of exactly this length: a look behind it is a fault that sanitizers see.
        const Bytes cut(file.begin(), file.begin() + static_cast<ptrdiff_t>(length));
        ASSERT_TRUE(endures(cut)) << "cut to " << length << " bytes";
    }
}

INSTANTIATE_TEST_SUITE_P(Forms, FormTruncation, ::testing::ValuesIn(formFiles()), formName);

}  // namespace
}  // namespace avitest
