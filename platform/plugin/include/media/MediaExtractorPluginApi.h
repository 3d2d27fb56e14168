// SPDX-License-Identifier: Apache-2.0
//
// The plain C records through which the framework and an extractor plug-in call each other. The
// order of the fields is the binary interface. `handle` and `data` belong to the side that fills
// the record and come back as the first argument of its functions.
//
// Threading: the framework serialises the calls on one extractor and its tracks; a buffer may come
// back through `release` on another thread.

#pragma once

#include <media/NdkMediaFormat.h>
#include <stdint.h>
#include <sys/types.h>
#include <utils/Errors.h>

namespace android {

extern "C" {

/// The bytes to extract from; owned by the framework, outlives the extractor.
struct CDataSource {
    /// Bytes read, less than `size` at the end of the source, or a negative error.
    ssize_t (*readAt)(void* handle, off64_t offset, void* data, size_t size);
    status_t (*getSize)(void* handle, off64_t* size);
    uint32_t (*flags)(void* handle);
    bool (*getUri)(void* handle, char* uriString, size_t bufferSize);
    void* handle;
};

/// The low three bits are a seek mode, the others flags.
enum CMediaTrackReadOptions : uint32_t {
    SEEK_PREVIOUS_SYNC = 0,
    SEEK_NEXT_SYNC = 1,
    SEEK_CLOSEST_SYNC = 2,
    SEEK_CLOSEST = 3,
    SEEK_FRAME_INDEX = 4,
    SEEK = 8,
    NONBLOCKING = 16
};

/// One sample on its way to the framework; owned by a buffer group.
struct CMediaBuffer {
    void* handle;
    void (*release)(void* handle);
    void* (*data)(void* handle);
    size_t (*size)(void* handle);
    size_t (*range_offset)(void* handle);
    size_t (*range_length)(void* handle);
    void (*set_range)(void* handle, size_t offset, size_t length);
    AMediaFormat* (*meta_data)(void* handle);
};

/// The framework's pool of buffers for one track.
struct CMediaBufferGroup {
    void* handle;
    bool (*init)(void* handle, size_t buffers, size_t buffer_size, size_t growthLimit);
    void (*add_buffer)(void* handle, size_t size);
    media_status_t (*acquire_buffer)(void* handle, CMediaBuffer** buf, bool nonBlocking,
                                     size_t requestedSize);
    bool (*has_buffers)(void* handle);
};

/// One track; the framework calls `free` on `data`, then free() on the record.
struct CMediaTrack {
    void* data;
    void (*free)(void* data);

    media_status_t (*start)(void* data, CMediaBufferGroup* bufferGroup);
    media_status_t (*stop)(void* data);
    media_status_t (*getFormat)(void* data, AMediaFormat* format);
    media_status_t (*read)(void* data, CMediaBuffer** buffer, uint32_t options, int64_t seekPosUs);
    bool (*supportsNonBlockingRead)(void* data);
};

/// One opened file; the framework calls `free` on `data`, then free() on the record.
struct CMediaExtractor {
    void* data;
    void (*free)(void* data);

    size_t (*countTracks)(void* data);
    CMediaTrack* (*getTrack)(void* data, size_t index);
    media_status_t (*getTrackMetaData)(void* data, AMediaFormat* meta, size_t index,
                                       uint32_t flags);
    media_status_t (*getMetaData)(void* data, AMediaFormat* meta);
    uint32_t (*flags)(void* data);
    media_status_t (*setMediaCas)(void* data, const uint8_t* casToken, size_t size);
    const char* (*name)(void* data);
};

/// Opens the source that the sniffer recognised; `meta` is what the sniffer left.
typedef CMediaExtractor* (*CreatorFunc)(CDataSource* source, void* meta);
/// Frees what the sniffer left in `meta`.
typedef void (*FreeMetaFunc)(void* meta);

/// Looks at the source: null when it is not recognised, else the creator with `*confidence` set,
/// and `*meta` with `*freeMeta` where the sniffer has something to tell the creator.
/// `*confidence` is uninitialised before the call.
typedef CreatorFunc (*SnifferFunc)(CDataSource* source, float* confidence, void** meta,
                                   FreeMetaFunc* freeMeta);

struct media_uuid_t {
    uint8_t b[16];
};

const uint32_t EXTRACTORDEF_VERSION_NDK_V1 = 2;
const uint32_t EXTRACTORDEF_VERSION_NDK_V2 = 3;
const uint32_t EXTRACTORDEF_VERSION = EXTRACTORDEF_VERSION_NDK_V2;

/// What a plug-in library tells about itself.
struct ExtractorDef {
    /// Says which member of `u` is set: v2 for _NDK_V1, v3 for _NDK_V2.
    const uint32_t def_version;
    /// Of several libraries with one uuid the framework keeps the highest extractor_version.
    media_uuid_t extractor_uuid;
    const uint32_t extractor_version;
    const char* extractor_name;

    union {
        struct {
            SnifferFunc sniff;
        } v2;
        struct {
            SnifferFunc sniff;
            /// File name extensions and MIME types, ended by a null; may itself be null.
            const char** supported_types;
        } v3;
    } u;
};

/// The type of the one function a plug-in exports, found by the name GETEXTRACTORDEF. The plug-in
/// defines it in this namespace, and must itself make it visible:
///     extern "C" {
///     __attribute__((visibility("default"))) ExtractorDef GETEXTRACTORDEF() { ... }
///     }
typedef ExtractorDef (*GetExtractorDef)();

}  // extern "C"

}  // namespace android
