// SPDX-License-Identifier: Apache-2.0
//
// What the extractor service sees of the library: its definition, the sniffer and the creator.
#include <media/MediaExtractorPluginApi.h>
#include <media/MediaExtractorPluginHelper.h>

#include "ChunkWalker.h"
#include "FileReader.h"
#include "RuvoAVIExtractor.h"
#include "support/Log.h"

namespace android {

namespace {

constexpr int kLineNotClaimed = 5658;

// Above 1: an AVI header is certain, whatever other extractors think of the content.
constexpr float kConfidence = 1.4f;

CMediaExtractor* CreateExtractor(CDataSource* source, void* /*meta*/) {
    return wrap(new RuvoAVIExtractor(new DataSourceHelper(source)));
}

// "AVI " is the format's form type; some cameras write the byte 0x19 in place of the blank.
bool isAviForm(FourCC type) {
    return type == fourcc("AVI ") || type == fourcc("AVI\x19");
}

CreatorFunc Sniff(CDataSource* source, float* confidence, void** /*meta*/,
                  FreeMetaFunc* /*freeMeta*/) {
    AVI_LOGV("Sniff +");
    FileReader reader(new DataSourceHelper(source));
    ChunkHeader header;
    const HeaderRead read = readChunkHeader(reader, 0, &header);
    if (read != HeaderRead::kWhole || header.id != fourcc("RIFF") || !isAviForm(header.type)) {
        AVI_LOGV("Sniff - *confidence = 0 @L%d", kLineNotClaimed);
        *confidence = 0.0f;
        return nullptr;
    }
    *confidence = kConfidence;
    AVI_LOGV("Sniff - *confidence: %f", static_cast<double>(kConfidence));
    return CreateExtractor;
}

const char* gSupportedTypes[] = {"avi", nullptr};

}  // namespace

extern "C" {

__attribute__((visibility("default"))) ExtractorDef GETEXTRACTORDEF() {
    return {
        EXTRACTORDEF_VERSION_NDK_V2,
        UUID("6b1c2f5e-9d34-4f0a-8c77-3a52e1d06f48"),
        2,
        "AVI Extractor",
        {.v3 = {Sniff, gSupportedTypes}},
    };
}

}  // extern "C"

}  // namespace android
