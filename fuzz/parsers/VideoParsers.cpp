// SPDX-License-Identifier: Apache-2.0
#include <media/stagefright/foundation/avc_utils.h>

#include <algorithm>
#include <cstring>

#include "codec/AvcNalUnits.h"
#include "codec/AvcRecord.h"
#include "codec/HevcParameterSets.h"
#include "codec/SequenceParameterSet.h"
#include "fuzz/parsers/Parsers.h"
#include "source/Conversions.h"
#include "source/FrameDescription.h"
#include "source/FrameType.h"
#include "support/StartCode.h"

namespace avifuzz {

using android::ABuffer;
using android::sp;

namespace {

void checkStartCodes(const ParserBytes& bytes) {
    const uint8_t* data = bytes.data();
    const size_t size = bytes.size();
    const ssize_t code = android::findStartCode(data, size);
    const size_t prefix = android::findStartCodePrefix(data, size, 0);
    expect((code < 0) == (prefix == size), "both searches see a start code, or none");
    if (code < 0) return;
    expect(static_cast<size_t>(code) <= prefix && prefix + 3 <= size, "a start code has 3 bytes");
    expect(std::memcmp(data + prefix, "\0\0\1", 3) == 0, "a start code is 00 00 01");
}

void checkRecord(const sp<ABuffer>& sps, const sp<ABuffer>& pps) {
    const sp<ABuffer> record = android::makeAvcRecord(sps, pps);
    if (record == nullptr) return;
    expect(record->size() == 11 + sps->size() + pps->size(), "a record holds both sets");
    const bool readable = sps->size() <= UINT16_MAX && pps->size() <= UINT16_MAX;
    const auto status = android::parseAVCCodecSpecificData(record->data(), record->size());
    expect(!readable || status == android::OK, "a record made here can be read");
}

void checkHevcSet(const android::HevcParameterSet& set, size_t size) {
    expect(set.found && set.at < size, "a parameter set lies in the sample");
}

}  // namespace

void fuzzAvcRecord(ParserBytes bytes) {
    android::parseAVCCodecSpecificData(bytes.data(), bytes.size());
}

void fuzzNalUnits(ParserBytes bytes) {
    checkStartCodes(bytes);
    const uint8_t* data = bytes.data();
    const size_t size = bytes.size();
    android::hasPictureParameterSet(data, size);
    const size_t spsAt = android::findSequenceParameterSet(data, size);
    expect(spsAt == 0 || spsAt + 3 < size, "a parameter set lies in the sample");
    const sp<ABuffer> sps = android::findNALUnit(data, size, android::kNalSequenceParameterSet);
    const sp<ABuffer> pps = android::findNALUnit(data, size, android::kNalPictureParameterSet);
    if (sps != nullptr && pps != nullptr && sps->size() >= 4) checkRecord(sps, pps);
}

void fuzzIdrSearch(ParserBytes bytes) {
    const android::IdrSearch search = android::findFirstIdr(bytes.data(), bytes.size());
    expect(search.searchStart <= bytes.size(), "a search ends in the sample");
    if (!search.found) return;
    const size_t header = search.position + search.prefixLength;
    expect(header < bytes.size(), "a picture has a header");
    expect((bytes[header] & android::kNalTypeMask) == android::kNalIdr, "the picture is an IDR");
}

// The platform's parser ends the process at a set that it cannot cope with.
void fuzzSequenceParameterSet(ParserBytes bytes) {
    if (!android::isSaneSequenceParameterSet(bytes.data(), bytes.size())) return;
    int32_t width = 0;
    int32_t height = 0;
    int32_t sarWidth = 0;
    int32_t sarHeight = 0;
    android::FindAVCDimensions(ABuffer::CreateAsCopy(bytes.data(), bytes.size()), &width, &height,
                               &sarWidth, &sarHeight);
    expect(width > 0 && height > 0, "a sane set has a picture");
}

void fuzzHevcSequenceHeader(ParserBytes bytes) {
    android::HevcSequenceHeader header;
    if (!android::rewriteHevcSequenceHeader(bytes.data(), bytes.size(), &header)) return;
    expect(header.end < bytes.size(), "a sequence header ends in the sample");
    checkHevcSet(header.vps, bytes.size());
    checkHevcSet(header.sps, bytes.size());
    checkHevcSet(header.pps, bytes.size());
    const sp<ABuffer> record = android::makeHevcRecord(bytes.data(), bytes.size(), header);
    expect(record == nullptr || record->size() == 26 + header.end, "a record has its size");
}

void fuzzFrameTypes(ParserBytes bytes) {
    for (const auto type :
         {android::avcFrameType, android::mpeg4FrameType, android::genericFrameType}) {
        const char* text = android::frameTypeText(type(bytes.data(), bytes.size()));
        expect(text != nullptr && std::strlen(text) > 0, "every type has a text");
    }
    android::describeMpeg4Start(bytes.data(), bytes.size());
}

void fuzzVideoConversions(ParserBytes bytes) {
    uint8_t probe[android::kVc1ProbeBytes] = {};
    std::copy_n(bytes.begin(), std::min(bytes.size(), sizeof(probe)), probe);
    android::probeVc1Frame(probe);
    for (size_t prefixSize = 1; prefixSize <= 4; ++prefixSize) {
        android::PrefixedNalReader reader(bytes.data(), bytes.size(), prefixSize);
        android::PrefixedNal unit;
        size_t end = 0;
        while (reader.next(&unit)) {
            expect(unit.prefixAt >= end, "every step advances");
            end = unit.prefixAt + 1;
            if (!unit.isWhole) continue;
            expect(unit.offset <= bytes.size() && unit.length <= bytes.size() - unit.offset,
                   "a whole unit lies in the sample");
            ParserBytes out(android::kStartCodeSize + unit.length / prefixSize);
            const size_t written = android::writeNalUnit(bytes.data() + unit.offset, unit.length,
                                                         out.data(), out.size());
            expect(written <= out.size(), "a unit is cut where its room ends");
        }
    }
}

}  // namespace avifuzz
