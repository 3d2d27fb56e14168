// SPDX-License-Identifier: Apache-2.0
#include "service/MediaFormat.h"

#include <array>
#include <stdexcept>
#include <string_view>
#include <utility>

namespace android::service {

namespace {

// The types' names in the order of FormatEntry::Value's alternatives.
constexpr std::array<const char*, 8> kTypeNames = {"int32",  "int64", "float",  "double",
                                                   "size_t", "Rect",  "string", "data"};
static_assert(kTypeNames.size() == std::variant_size_v<FormatEntry::Value>);

// Walks the text "a: int32(1), b: string(x)}" entry by entry. Invariant: mRest is the text that is
// not walked yet. A name or a string may itself hold any of the text's punctuation, so the
// getters decide where it ends: only a name that has a value of the type that follows it is one.
class EntryWalk {
  public:
    EntryWalk(const FormatView& format, std::string_view text) : mFormat(format), mRest(text) {}

    std::vector<FormatEntry> all() {
        std::vector<FormatEntry> entries;
        while (mRest != "}") {
            if (!entries.empty()) skip(", ");
            entries.push_back(next());
        }
        return entries;
    }

  private:
    FormatEntry next() {
        size_t colon = mRest.find(kColon);
        for (; colon != std::string_view::npos; colon = mRest.find(kColon, colon + 1)) {
            const std::string name(mRest.substr(0, colon));
            const std::string_view typed = mRest.substr(colon + kColon.size());
            if (auto value = valueOf(name.c_str(), typed)) {
                mRest = typed;
                FormatEntry entry{name, *std::move(value)};
                skip(entry.typeName());
                skipValue(entry.value);
                return entry;
            }
        }
        throw std::logic_error("no entry of the format fits its text at: " + std::string(mRest));
    }

    // The value of `name`, if it has the type that `typed` begins with.
    std::optional<FormatEntry::Value> valueOf(const char* name, std::string_view typed) const {
        for (size_t type = 0; type < kTypeNames.size(); ++type) {
            if (typed.rfind(kTypeNames[type], 0) == 0) return valueOf(name, type);
        }
        return std::nullopt;
    }

    template <typename T>
    static std::optional<FormatEntry::Value> wrap(std::optional<T> value) {
        if (!value) return std::nullopt;
        return FormatEntry::Value(*std::move(value));
    }

    std::optional<FormatEntry::Value> valueOf(const char* name, size_t type) const {
        switch (type) {
            case 0:
                return wrap(mFormat.getInt32(name));
            case 1:
                return wrap(mFormat.getInt64(name));
            case 2:
                return wrap(mFormat.getFloat(name));
            case 3:
                return wrap(mFormat.getDouble(name));
            case 4:
                return wrap(mFormat.getSize(name));
            case 5:
                return wrap(mFormat.getRect(name));
            case 6:
                return wrap(mFormat.getString(name));
            default:
                return wrap(mFormat.getBuffer(name));
        }
    }

    // Skips what stands between the type's name and the next entry.
    void skipValue(const FormatEntry::Value& value) {
        if (std::holds_alternative<std::vector<uint8_t>>(value)) return;
        if (const auto* text = std::get_if<std::string>(&value)) {
            skip("(" + *text + ")");
            return;
        }
        const size_t end = mRest.find(')');
        if (end == std::string_view::npos) skip(")");
        mRest.remove_prefix(end + 1);
    }

    void skip(std::string_view expected) {
        if (mRest.substr(0, expected.size()) != expected) {
            throw std::logic_error("the format's text lacks '" + std::string(expected) +
                                   "' at: " + std::string(mRest));
        }
        mRest.remove_prefix(expected.size());
    }

    static constexpr std::string_view kColon = ": ";
    const FormatView& mFormat;
    std::string_view mRest;
};

}  // namespace

bool FormatRect::operator==(const FormatRect& other) const {
    return left == other.left && top == other.top && right == other.right && bottom == other.bottom;
}

const char* FormatEntry::typeName() const {
    return kTypeNames.at(value.index());
}

std::optional<int32_t> FormatView::getInt32(const char* name) const {
    int32_t value = 0;
    if (!AMediaFormat_getInt32(mFormat, name, &value)) return std::nullopt;
    return value;
}

std::optional<int64_t> FormatView::getInt64(const char* name) const {
    int64_t value = 0;
    if (!AMediaFormat_getInt64(mFormat, name, &value)) return std::nullopt;
    return value;
}

std::optional<float> FormatView::getFloat(const char* name) const {
    float value = 0;
    if (!AMediaFormat_getFloat(mFormat, name, &value)) return std::nullopt;
    return value;
}

std::optional<double> FormatView::getDouble(const char* name) const {
    double value = 0;
    if (!AMediaFormat_getDouble(mFormat, name, &value)) return std::nullopt;
    return value;
}

std::optional<size_t> FormatView::getSize(const char* name) const {
    size_t value = 0;
    if (!AMediaFormat_getSize(mFormat, name, &value)) return std::nullopt;
    return value;
}

std::optional<FormatRect> FormatView::getRect(const char* name) const {
    FormatRect rect;
    if (!AMediaFormat_getRect(mFormat, name, &rect.left, &rect.top, &rect.right, &rect.bottom)) {
        return std::nullopt;
    }
    return rect;
}

std::optional<std::string> FormatView::getString(const char* name) const {
    const char* value = nullptr;
    if (!AMediaFormat_getString(mFormat, name, &value)) return std::nullopt;
    return value;
}

std::optional<std::vector<uint8_t>> FormatView::getBuffer(const char* name) const {
    void* data = nullptr;
    size_t size = 0;
    if (!AMediaFormat_getBuffer(mFormat, name, &data, &size)) return std::nullopt;
    const auto* bytes = static_cast<const uint8_t*>(data);
    // An empty entry may come with a null pointer.
    return size == 0 ? std::vector<uint8_t>() : std::vector<uint8_t>(bytes, bytes + size);
}

bool FormatView::contains(const char* name) const {
    return getInt32(name) || getInt64(name) || getFloat(name) || getDouble(name) || getSize(name) ||
           getRect(name) || getString(name) || getBuffer(name);
}

std::string FormatView::toString() const {
    return mFormat == nullptr ? std::string() : AMediaFormat_toString(mFormat);
}

std::vector<FormatEntry> FormatView::entries() const {
    if (mFormat == nullptr) return {};
    const std::string text = toString();
    return EntryWalk(*this, text).all();
}

MediaFormat::MediaFormat() : FormatView(AMediaFormat_new()) {}

MediaFormat MediaFormat::copyOf(const FormatView& source) {
    MediaFormat result;
    if (source.get() != nullptr) AMediaFormat_copy(result.get(), source.get());
    return result;
}

MediaFormat::MediaFormat(MediaFormat&& other) noexcept
    : FormatView(std::exchange(other.mFormat, nullptr)) {}

MediaFormat& MediaFormat::operator=(MediaFormat&& other) noexcept {
    std::swap(mFormat, other.mFormat);
    return *this;
}

MediaFormat::~MediaFormat() {
    AMediaFormat_delete(mFormat);
}

}  // namespace android::service
