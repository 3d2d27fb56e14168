// SPDX-License-Identifier: Apache-2.0
//
// AMediaFormat, the ordered set of named, typed values of the public NDK, API level 29.
//
// Invariant: names are unique, entries keep the order of their first insertion, and there are at
// most 256 of them: adding one more is a fatal assertion.
// Threading: a format has no lock. Several threads may read one format at once, except with
// AMediaFormat_getString and AMediaFormat_toString, which write its caches. Copies share their
// buffers, so writing through AMediaFormat_getBuffer's pointer is seen by every copy.
//
// Unless stated otherwise `format` and the output pointers must be valid. Usable from C and C++.

#pragma once

#include <media/NdkMediaError.h>
#include <stdbool.h>
#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif
#pragma GCC visibility push(default)

struct AMediaFormat;
typedef struct AMediaFormat AMediaFormat;

/// Makes an empty format; the caller deletes it with AMediaFormat_delete.
AMediaFormat* AMediaFormat_new(void);

/// Frees the format and every pointer handed out by it. Null is allowed. Always AMEDIA_OK.
media_status_t AMediaFormat_delete(AMediaFormat* format);

/// The entries as text in order of first insertion, `name: type(value)` joined with ", " and closed
/// with "}"; buffers appear as `name: data`. The text lives until the next call on this format or
/// its deletion.
const char* AMediaFormat_toString(AMediaFormat* format);

// Getters: true when `name` exists with exactly this type, no conversion being made. Otherwise, and
// for a null format or name, false with the outputs untouched.

bool AMediaFormat_getInt32(AMediaFormat* format, const char* name, int32_t* out);
bool AMediaFormat_getInt64(AMediaFormat* format, const char* name, int64_t* out);
bool AMediaFormat_getFloat(AMediaFormat* format, const char* name, float* out);
bool AMediaFormat_getDouble(AMediaFormat* format, const char* name, double* out);
bool AMediaFormat_getSize(AMediaFormat* format, const char* name, size_t* out);
bool AMediaFormat_getRect(AMediaFormat* format, const char* name, int32_t* left, int32_t* top,
                          int32_t* right, int32_t* bottom);

/// As the getters above. `*data` points at the live bytes, which stay until no format that shares
/// them holds the entry.
bool AMediaFormat_getBuffer(AMediaFormat* format, const char* name, void** data, size_t* size);

/// As the getters above. `*out` points into a cache by name and lives until the next successful
/// call for that name on this format, or its deletion, whatever becomes of the entry itself.
bool AMediaFormat_getString(AMediaFormat* format, const char* name, const char** out);

// Setters: add `name` at the end, or replace the value, and if need be its type, in place. Null
// arguments are ignored.

void AMediaFormat_setInt32(AMediaFormat* format, const char* name, int32_t value);
void AMediaFormat_setInt64(AMediaFormat* format, const char* name, int64_t value);
void AMediaFormat_setFloat(AMediaFormat* format, const char* name, float value);
void AMediaFormat_setDouble(AMediaFormat* format, const char* name, double value);
void AMediaFormat_setSize(AMediaFormat* format, const char* name, size_t value);
void AMediaFormat_setRect(AMediaFormat* format, const char* name, int32_t left, int32_t top,
                          int32_t right, int32_t bottom);

/// As the setters above; copies the string.
void AMediaFormat_setString(AMediaFormat* format, const char* name, const char* value);

/// As the setters above; copies the bytes. `size` may be 0, and `data` null with it.
void AMediaFormat_setBuffer(AMediaFormat* format, const char* name, const void* data, size_t size);

/// Removes every entry. Strings handed out by AMediaFormat_getString stay.
void AMediaFormat_clear(AMediaFormat* format);

/// Clears `to`, then gives it the entries of `from`; buffers are shared, not duplicated. Copying a
/// format onto itself therefore empties it. AMEDIA_ERROR_INVALID_PARAMETER when either is null.
media_status_t AMediaFormat_copy(AMediaFormat* to, AMediaFormat* from);

// The names that the framework knows.
extern const char* AMEDIAFORMAT_KEY_AAC_DRC_ATTENUATION_FACTOR;
extern const char* AMEDIAFORMAT_KEY_AAC_DRC_BOOST_FACTOR;
extern const char* AMEDIAFORMAT_KEY_AAC_DRC_HEAVY_COMPRESSION;
extern const char* AMEDIAFORMAT_KEY_AAC_DRC_TARGET_REFERENCE_LEVEL;
extern const char* AMEDIAFORMAT_KEY_AAC_ENCODED_TARGET_LEVEL;
extern const char* AMEDIAFORMAT_KEY_AAC_MAX_OUTPUT_CHANNEL_COUNT;
extern const char* AMEDIAFORMAT_KEY_AAC_PROFILE;
extern const char* AMEDIAFORMAT_KEY_AAC_SBR_MODE;
extern const char* AMEDIAFORMAT_KEY_ALBUM;
extern const char* AMEDIAFORMAT_KEY_ALBUMART;
extern const char* AMEDIAFORMAT_KEY_ALBUMARTIST;
extern const char* AMEDIAFORMAT_KEY_ARTIST;
extern const char* AMEDIAFORMAT_KEY_AUDIO_PRESENTATION_INFO;
extern const char* AMEDIAFORMAT_KEY_AUDIO_PRESENTATION_PRESENTATION_ID;
extern const char* AMEDIAFORMAT_KEY_AUDIO_PRESENTATION_PROGRAM_ID;
extern const char* AMEDIAFORMAT_KEY_AUDIO_SESSION_ID;
extern const char* AMEDIAFORMAT_KEY_AUTHOR;
extern const char* AMEDIAFORMAT_KEY_BITRATE_MODE;
extern const char* AMEDIAFORMAT_KEY_BITS_PER_SAMPLE;
extern const char* AMEDIAFORMAT_KEY_BIT_RATE;
extern const char* AMEDIAFORMAT_KEY_CAPTURE_RATE;
extern const char* AMEDIAFORMAT_KEY_CDTRACKNUMBER;
extern const char* AMEDIAFORMAT_KEY_CHANNEL_COUNT;
extern const char* AMEDIAFORMAT_KEY_CHANNEL_MASK;
extern const char* AMEDIAFORMAT_KEY_COLOR_FORMAT;
extern const char* AMEDIAFORMAT_KEY_COLOR_RANGE;
extern const char* AMEDIAFORMAT_KEY_COLOR_STANDARD;
extern const char* AMEDIAFORMAT_KEY_COLOR_TRANSFER;
extern const char* AMEDIAFORMAT_KEY_COMPILATION;
extern const char* AMEDIAFORMAT_KEY_COMPLEXITY;
extern const char* AMEDIAFORMAT_KEY_COMPOSER;
extern const char* AMEDIAFORMAT_KEY_CREATE_INPUT_SURFACE_SUSPENDED;
extern const char* AMEDIAFORMAT_KEY_CRYPTO_DEFAULT_IV_SIZE;
extern const char* AMEDIAFORMAT_KEY_CRYPTO_ENCRYPTED_BYTE_BLOCK;
extern const char* AMEDIAFORMAT_KEY_CRYPTO_ENCRYPTED_SIZES;
extern const char* AMEDIAFORMAT_KEY_CRYPTO_IV;
extern const char* AMEDIAFORMAT_KEY_CRYPTO_KEY;
extern const char* AMEDIAFORMAT_KEY_CRYPTO_MODE;
extern const char* AMEDIAFORMAT_KEY_CRYPTO_PLAIN_SIZES;
extern const char* AMEDIAFORMAT_KEY_CRYPTO_SKIP_BYTE_BLOCK;
extern const char* AMEDIAFORMAT_KEY_CSD;
extern const char* AMEDIAFORMAT_KEY_CSD_0;
extern const char* AMEDIAFORMAT_KEY_CSD_1;
extern const char* AMEDIAFORMAT_KEY_CSD_2;
extern const char* AMEDIAFORMAT_KEY_CSD_AVC;
extern const char* AMEDIAFORMAT_KEY_CSD_HEVC;
extern const char* AMEDIAFORMAT_KEY_D263;
extern const char* AMEDIAFORMAT_KEY_DATE;
extern const char* AMEDIAFORMAT_KEY_DISCNUMBER;
extern const char* AMEDIAFORMAT_KEY_DISPLAY_CROP;
extern const char* AMEDIAFORMAT_KEY_DISPLAY_HEIGHT;
extern const char* AMEDIAFORMAT_KEY_DISPLAY_WIDTH;
extern const char* AMEDIAFORMAT_KEY_DURATION;
extern const char* AMEDIAFORMAT_KEY_ENCODER_DELAY;
extern const char* AMEDIAFORMAT_KEY_ENCODER_PADDING;
extern const char* AMEDIAFORMAT_KEY_ESDS;
extern const char* AMEDIAFORMAT_KEY_EXIF_OFFSET;
extern const char* AMEDIAFORMAT_KEY_EXIF_SIZE;
extern const char* AMEDIAFORMAT_KEY_FLAC_COMPRESSION_LEVEL;
extern const char* AMEDIAFORMAT_KEY_FRAME_COUNT;
extern const char* AMEDIAFORMAT_KEY_FRAME_RATE;
extern const char* AMEDIAFORMAT_KEY_GENRE;
extern const char* AMEDIAFORMAT_KEY_GRID_COLUMNS;
extern const char* AMEDIAFORMAT_KEY_GRID_ROWS;
extern const char* AMEDIAFORMAT_KEY_HAPTIC_CHANNEL_COUNT;
extern const char* AMEDIAFORMAT_KEY_HDR_STATIC_INFO;
extern const char* AMEDIAFORMAT_KEY_HEIGHT;
extern const char* AMEDIAFORMAT_KEY_ICC_PROFILE;
extern const char* AMEDIAFORMAT_KEY_INTRA_REFRESH_PERIOD;
extern const char* AMEDIAFORMAT_KEY_IS_ADTS;
extern const char* AMEDIAFORMAT_KEY_IS_AUTOSELECT;
extern const char* AMEDIAFORMAT_KEY_IS_DEFAULT;
extern const char* AMEDIAFORMAT_KEY_IS_FORCED_SUBTITLE;
extern const char* AMEDIAFORMAT_KEY_IS_SYNC_FRAME;
extern const char* AMEDIAFORMAT_KEY_I_FRAME_INTERVAL;
extern const char* AMEDIAFORMAT_KEY_LANGUAGE;
extern const char* AMEDIAFORMAT_KEY_LATENCY;
extern const char* AMEDIAFORMAT_KEY_LEVEL;
extern const char* AMEDIAFORMAT_KEY_LOCATION;
extern const char* AMEDIAFORMAT_KEY_LOOP;
extern const char* AMEDIAFORMAT_KEY_LYRICIST;
extern const char* AMEDIAFORMAT_KEY_MANUFACTURER;
extern const char* AMEDIAFORMAT_KEY_MAX_BIT_RATE;
extern const char* AMEDIAFORMAT_KEY_MAX_FPS_TO_ENCODER;
extern const char* AMEDIAFORMAT_KEY_MAX_HEIGHT;
extern const char* AMEDIAFORMAT_KEY_MAX_INPUT_SIZE;
extern const char* AMEDIAFORMAT_KEY_MAX_PTS_GAP_TO_ENCODER;
extern const char* AMEDIAFORMAT_KEY_MAX_WIDTH;
extern const char* AMEDIAFORMAT_KEY_MIME;
extern const char* AMEDIAFORMAT_KEY_MPEG2_STREAM_HEADER;
extern const char* AMEDIAFORMAT_KEY_MPEG_USER_DATA;
extern const char* AMEDIAFORMAT_KEY_OPERATING_RATE;
extern const char* AMEDIAFORMAT_KEY_PCM_BIG_ENDIAN;
extern const char* AMEDIAFORMAT_KEY_PCM_ENCODING;
extern const char* AMEDIAFORMAT_KEY_PRIORITY;
extern const char* AMEDIAFORMAT_KEY_PROFILE;
extern const char* AMEDIAFORMAT_KEY_PSSH;
extern const char* AMEDIAFORMAT_KEY_PUSH_BLANK_BUFFERS_ON_STOP;
extern const char* AMEDIAFORMAT_KEY_REPEAT_PREVIOUS_FRAME_AFTER;
extern const char* AMEDIAFORMAT_KEY_ROTATION;
extern const char* AMEDIAFORMAT_KEY_SAMPLE_FILE_OFFSET;
extern const char* AMEDIAFORMAT_KEY_SAMPLE_RATE;
extern const char* AMEDIAFORMAT_KEY_SAMPLE_TIME_BEFORE_APPEND;
extern const char* AMEDIAFORMAT_KEY_SAR_HEIGHT;
extern const char* AMEDIAFORMAT_KEY_SAR_WIDTH;
extern const char* AMEDIAFORMAT_KEY_SEI;
extern const char* AMEDIAFORMAT_KEY_SLICE_HEIGHT;
extern const char* AMEDIAFORMAT_KEY_STRIDE;
extern const char* AMEDIAFORMAT_KEY_TARGET_TIME;
extern const char* AMEDIAFORMAT_KEY_TEMPORAL_LAYERING;
extern const char* AMEDIAFORMAT_KEY_TEMPORAL_LAYER_COUNT;
extern const char* AMEDIAFORMAT_KEY_TEMPORAL_LAYER_ID;
extern const char* AMEDIAFORMAT_KEY_TEXT_FORMAT_DATA;
extern const char* AMEDIAFORMAT_KEY_THUMBNAIL_CSD_HEVC;
extern const char* AMEDIAFORMAT_KEY_THUMBNAIL_HEIGHT;
extern const char* AMEDIAFORMAT_KEY_THUMBNAIL_TIME;
extern const char* AMEDIAFORMAT_KEY_THUMBNAIL_WIDTH;
extern const char* AMEDIAFORMAT_KEY_TILE_HEIGHT;
extern const char* AMEDIAFORMAT_KEY_TILE_WIDTH;
extern const char* AMEDIAFORMAT_KEY_TIME_US;
extern const char* AMEDIAFORMAT_KEY_TITLE;
extern const char* AMEDIAFORMAT_KEY_TRACK_ID;
extern const char* AMEDIAFORMAT_KEY_TRACK_INDEX;
extern const char* AMEDIAFORMAT_KEY_VALID_SAMPLES;
extern const char* AMEDIAFORMAT_KEY_WIDTH;
extern const char* AMEDIAFORMAT_KEY_YEAR;

#pragma GCC visibility pop
#ifdef __cplusplus
}  // extern "C"
#endif
