// SPDX-License-Identifier: Apache-2.0
//
// Helpers for class definitions.
#pragma once

/// Forbids copying and assigning `name`; stands in the class's private part. The user ends it with
/// a semicolon.
// NOLINTBEGIN(bugprone-macro-parentheses): a parameter's declaration takes no parentheses
#define DISALLOW_EVIL_CONSTRUCTORS(name) \
    name(const name&) = delete;          \
    name& operator=(const name&) = delete
// NOLINTEND(bugprone-macro-parentheses)
