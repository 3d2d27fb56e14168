// SPDX-License-Identifier: Apache-2.0

#include <media/stagefright/foundation/AString.h>

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace android {

void AString::append(int x) {
    append(AStringPrintf("%d", x));
}

void AString::append(unsigned x) {
    append(AStringPrintf("%u", x));
}

void AString::append(long x) {
    append(AStringPrintf("%ld", x));
}

void AString::append(unsigned long x) {
    append(AStringPrintf("%lu", x));
}

void AString::append(long long x) {
    append(AStringPrintf("%lld", x));
}

void AString::append(unsigned long long x) {
    append(AStringPrintf("%llu", x));
}

void AString::append(float x) {
    append(AStringPrintf("%f", static_cast<double>(x)));
}

void AString::append(double x) {
    append(AStringPrintf("%f", x));
}

bool AString::startsWith(const char* prefix) const {
    return mText.compare(0, strlen(prefix), prefix) == 0;
}

bool AString::endsWith(const char* suffix) const {
    const size_t length = strlen(suffix);
    return length <= mText.size() && mText.compare(mText.size() - length, length, suffix) == 0;
}

AString AStringPrintf(const char* format, ...) {
    char* text = nullptr;
    va_list args;
    va_start(args, format);
    const int length = vasprintf(&text, format, args);
    va_end(args);
    if (length < 0) {
        return {};
    }
    AString result(text, static_cast<size_t>(length));
    free(text);
    return result;
}

}  // namespace android
