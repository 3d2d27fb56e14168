// SPDX-License-Identifier: Apache-2.0
#include "tools/avitool/extract/ParameterSets.h"

#include <algorithm>

namespace avitool {

namespace {

using Bytes = std::vector<uint8_t>;

constexpr uint8_t kStartCode[] = {0, 0, 0, 1};
constexpr size_t kShortStartCodeSize = 3;

// Takes big-endian fields off the front of a record. A read that does not fit returns false.
class RecordReader {
  public:
    explicit RecordReader(const Bytes& record) : mRecord(record) {}

    bool skip(size_t count) {
        if (count > mRecord.size() - mPosition) return false;
        mPosition += count;
        return true;
    }
    bool u8(size_t* out) {
        if (mPosition == mRecord.size()) return false;
        *out = mRecord[mPosition++];
        return true;
    }
    bool u16(size_t* out) {
        size_t high = 0;
        size_t low = 0;
        if (!u8(&high) || !u8(&low)) return false;
        *out = high << 8 | low;
        return true;
    }
    // u16 length | unit
    bool moveUnit(Bytes* stream) {
        size_t length = 0;
        if (!u16(&length) || length > mRecord.size() - mPosition) return false;
        stream->insert(stream->end(), std::begin(kStartCode), std::end(kStartCode));
        stream->insert(stream->end(), mRecord.data() + mPosition,
                       mRecord.data() + mPosition + length);
        mPosition += length;
        return true;
    }
    bool moveUnits(size_t count, Bytes* stream) {
        for (; count > 0; --count) {
            if (!moveUnit(stream)) return false;
        }
        return true;
    }

  private:
    const Bytes& mRecord;
    size_t mPosition = 0;
};

// u8 version | u8 profile | u8 compatibility | u8 level | u8 length size | u8 SPS count | sets |
// u8 PPS count | sets
void moveAvcSets(const Bytes& record, Bytes* stream) {
    constexpr size_t kFieldsSize = 5;
    constexpr size_t kCountMask = 31;
    RecordReader in(record);
    size_t count = 0;
    if (!in.skip(kFieldsSize) || !in.u8(&count)) return;
    if (!in.moveUnits(count & kCountMask, stream)) return;
    if (in.u8(&count)) in.moveUnits(count, stream);
}

// 22 bytes of fields | u8 arrays | for each: u8 type | u16 count | sets
void moveHevcSets(const Bytes& record, Bytes* stream) {
    constexpr size_t kFieldsSize = 22;
    RecordReader in(record);
    size_t arrays = 0;
    if (!in.skip(kFieldsSize) || !in.u8(&arrays)) return;
    for (; arrays > 0; --arrays) {
        size_t count = 0;
        if (!in.skip(1) || !in.u16(&count) || !in.moveUnits(count, stream)) return;
    }
}

bool isShortStartCode(const uint8_t* data) {
    return data[0] == 0 && data[1] == 0 && data[2] == 1;
}

bool beginsWithStartCode(const Bytes& bytes) {
    const size_t size = bytes.size();
    if (size >= kShortStartCodeSize && isShortStartCode(bytes.data())) return true;
    return size > kShortStartCodeSize && bytes[0] == 0 && isShortStartCode(bytes.data() + 1);
}

enum class NalKind { kSequenceSet, kPicture, kOther };

NalKind kindOf(NalCodec codec, uint8_t header) {
    if (codec == NalCodec::kAvc) {
        const uint8_t type = header & 0x1F;
        if (type == 7) return NalKind::kSequenceSet;
        return type >= 1 && type <= 5 ? NalKind::kPicture : NalKind::kOther;
    }
    const uint8_t type = header >> 1 & 0x3F;
    if (type == 33) return NalKind::kSequenceSet;
    return type < 32 ? NalKind::kPicture : NalKind::kOther;
}

}  // namespace

std::vector<uint8_t> parameterSetStream(NalCodec codec, const std::vector<uint8_t>& record) {
    Bytes stream;
    if (beginsWithStartCode(record)) {
        stream = record;
        // The chunk that it comes from is filled up to an even length; units do not end with 0.
        while (!stream.empty() && stream.back() == 0)
            stream.pop_back();
        return stream;
    }
    (codec == NalCodec::kAvc ? moveAvcSets : moveHevcSets)(record, &stream);
    return stream;
}

bool beginsWithParameterSets(NalCodec codec, const uint8_t* data, size_t size) {
    for (; size > kShortStartCodeSize; ++data, --size) {
        if (!isShortStartCode(data)) continue;
        const NalKind kind = kindOf(codec, data[kShortStartCodeSize]);
        if (kind != NalKind::kOther) return kind == NalKind::kSequenceSet;
    }
    return false;
}

}  // namespace avitool
