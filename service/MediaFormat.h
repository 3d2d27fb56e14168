// SPDX-License-Identifier: Apache-2.0
// Typed C++ access to AMediaFormat: FormatView looks at a format somebody else owns, MediaFormat
// owns one. Every getter returns a copy, so that nothing points into the format afterwards.
// Threads: reading a string and printing are writes to a cache inside the format, hence one format
// may be used by one thread at a time only; different formats are independent.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include <media/NdkMediaFormat.h>

namespace android::service {

/** The four numbers of a rectangle entry. */
struct FormatRect {
    int32_t left = 0;
    int32_t top = 0;
    int32_t right = 0;
    int32_t bottom = 0;
    bool operator==(const FormatRect& other) const;
};

/** One key of a format with its value, whose alternative is the entry's type. */
struct FormatEntry {
    using Value = std::variant<int32_t, int64_t, float, double, size_t, FormatRect, std::string,
                               std::vector<uint8_t>>;
    std::string name;
    Value value;

    /** The type's name as AMediaFormat_toString writes it: int32, int64, float, double, size_t,
     *  Rect, string or data. */
    const char* typeName() const;
};

/** Read access to a format that somebody else owns and that outlives the view. */
class FormatView {
  public:
    /** `format` may be null: every getter then finds nothing. */
    explicit FormatView(AMediaFormat* format) : mFormat(format) {}

    // Each getter returns the value of `name` if there is one of exactly this type, else nothing.
    std::optional<int32_t> getInt32(const char* name) const;
    std::optional<int64_t> getInt64(const char* name) const;
    std::optional<float> getFloat(const char* name) const;
    std::optional<double> getDouble(const char* name) const;
    std::optional<size_t> getSize(const char* name) const;
    std::optional<FormatRect> getRect(const char* name) const;
    std::optional<std::string> getString(const char* name) const;
    std::optional<std::vector<uint8_t>> getBuffer(const char* name) const;

    /** Whether the format has an entry `name` of any type. */
    bool contains(const char* name) const;

    /** The text of AMediaFormat_toString; empty for a null format. */
    std::string toString() const;

    /**
     * Every entry in the format's own order.
     * A format cannot be enumerated: names and types are taken from its text and the values from
     * the typed getters. Throws std::logic_error if text and getters contradict each other.
     */
    std::vector<FormatEntry> entries() const;

    /** The plain format, null if there is none; still owned by its owner. */
    AMediaFormat* get() const { return mFormat; }

  protected:
    AMediaFormat* mFormat = nullptr;
};

/**
 * A format of one's own; never null except after being moved from. Movable, not copyable.
 * Its entries are read with the getters of FormatView and set through get().
 */
class MediaFormat : public FormatView {
  public:
    /** A new, empty format. */
    MediaFormat();
    /** Takes over `format`, which must not be null. */
    static MediaFormat adopt(AMediaFormat* format) { return MediaFormat(format); }
    /** A format of one's own with the entries that `source` has now. */
    static MediaFormat copyOf(const FormatView& source);

    MediaFormat(MediaFormat&& other) noexcept;
    MediaFormat& operator=(MediaFormat&& other) noexcept;
    ~MediaFormat();

  private:
    explicit MediaFormat(AMediaFormat* format) : FormatView(format) {}
};

}  // namespace android::service
