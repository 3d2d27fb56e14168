// SPDX-License-Identifier: Apache-2.0
//
// A growing text that numbers can be appended to. Threading: one thread at a time.
#pragma once

#include <cstddef>
#include <string>

namespace android {

class AString {
  public:
    AString() = default;

    // Both convert: callers pass literals where an AString is wanted.
    AString(const char* s) : mText(s) {}  // NOLINT(google-explicit-constructor)
    AString(const char* s, size_t size) : mText(s, size) {}

    /// Replaces the text by the zero-terminated `s`, or by `size` bytes at `s`.
    void setTo(const char* s) { mText = s; }
    void setTo(const char* s, size_t size) { mText.assign(s, size); }

    /// Empties the text.
    void clear() { mText.clear(); }

    /// Bytes, without the terminating zero.
    size_t size() const { return mText.size(); }
    bool empty() const { return mText.empty(); }

    /// The text, zero-terminated; valid until the next change.
    const char* c_str() const { return mText.c_str(); }

    /// Appends one character, a text or `size` bytes at `s`.
    void append(char c) { mText.push_back(c); }
    void append(const char* s) { mText.append(s); }
    void append(const char* s, size_t size) { mText.append(s, size); }
    void append(const AString& other) { mText.append(other.mText); }

    /// Appends a number in decimal: %d, %u, %ld, %lu, %lld, %llu; %f (six decimals) for the last
    /// two.
    void append(int x);
    void append(unsigned x);
    void append(long x);
    void append(unsigned long x);
    void append(long long x);
    void append(unsigned long long x);
    void append(float x);
    void append(double x);

    /// Compare bytes; case counts.
    bool startsWith(const char* prefix) const;
    bool endsWith(const char* suffix) const;

    bool operator==(const AString& other) const { return mText == other.mText; }
    bool operator!=(const AString& other) const { return mText != other.mText; }

  private:
    std::string mText;
};

/// A text formatted as printf does.
AString AStringPrintf(const char* format, ...) __attribute__((format(printf, 1, 2)));

}  // namespace android
