// SPDX-License-Identifier: Apache-2.0
//
// For tests of code that aborts the process: expects SIGABRT and not just any death, so that a
// sanitizer's report or a wild access does not pass for an assertion.
#pragma once

#include <gtest/gtest.h>

#include <csignal>

/// Expects that `statement` aborts, with text that matches the regular expression `text` on stderr.
#define EXPECT_ABORT(statement, text) EXPECT_EXIT(statement, testing::KilledBySignal(SIGABRT), text)
