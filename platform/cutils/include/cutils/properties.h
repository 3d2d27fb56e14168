// SPDX-License-Identifier: Apache-2.0
//
// System properties: named strings, here private to the process and empty at its start.
// Both functions may be called from any thread. Usable from C and C++.

#pragma once

#ifdef __cplusplus
extern "C" {
#endif
#pragma GCC visibility push(default)

/// What old devices allowed a key, with its terminating zero. Longer keys work.
#define PROPERTY_KEY_MAX 32
/// What a value may take, in bytes with its terminating zero.
#define PROPERTY_VALUE_MAX 92

/// Copies the value of `key` into `value`, which must hold PROPERTY_VALUE_MAX bytes. When the
/// property is unset or empty, copies `default_value` instead, cut to PROPERTY_VALUE_MAX - 1 bytes;
/// a null default gives an empty string. Returns the length of what was copied.
int property_get(const char* key, char* value, const char* default_value);

/// Sets `key` to `value`; null means the empty string. Returns 0, or a negative number when the key
/// is null or empty or the value exceeds PROPERTY_VALUE_MAX - 1 bytes; then nothing changes.
int property_set(const char* key, const char* value);

#pragma GCC visibility pop
#ifdef __cplusplus
}  // extern "C"
#endif
