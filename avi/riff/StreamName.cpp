// SPDX-License-Identifier: Apache-2.0
#include "riff/StreamName.h"

#include <string.h>

#include <string_view>

#include "support/Log.h"

namespace android {

namespace {

constexpr int64_t kMaxNameSize = 0xFFFFFFE;

struct LanguageHint {
    std::string_view text;  // in the stream's name
    const char* language;   // ISO 639-2
};

// In the order in which they are looked for.
constexpr LanguageHint kLanguageHints[] = {
    {"en-", "eng"}, {"fr-", "fre"}, {"de-", "deu"}, {"es-", "spa"}, {"jp-", "jpn"}, {"zh-", "chi"},
};

const char* languageFromName(std::string_view name) {
    for (const LanguageHint& hint : kLanguageHints) {
        if (name.find(hint.text) != std::string_view::npos) return hint.language;
    }
    return "und";
}

}  // namespace

void parseSTRN(FileReader& reader, int64_t start, int64_t end, Track* track) {
    const char* language = "und";
    const int64_t size = end - start;
    sp<ABuffer> name;
    if (size >= 1 && size <= kMaxNameSize &&
        reader.readBuffer(start, static_cast<size_t>(size), &name) == OK) {
        // The text may end before the chunk does.
        const char* text = reinterpret_cast<const char*>(name->data());
        const std::string_view view(text, strnlen(text, name->size()));
        language = languageFromName(view);
        AVI_LOGV("strn '%.*s', language '%s'", static_cast<int>(view.size()), view.data(),
                 language);
    }
    AMediaFormat_setString(track->meta.get(), AMEDIAFORMAT_KEY_LANGUAGE, language);
}

}  // namespace android
