// SPDX-License-Identifier: Apache-2.0
//
// DTS frames (ETSI TS 102 114): core headers and extension substream headers. Functions over bytes,
// without state; any thread.
#pragma once

#include <media/NdkMediaFormat.h>
#include <media/stagefright/foundation/ABuffer.h>
#include <stddef.h>
#include <stdint.h>
#include <utils/Errors.h>
#include <utils/StrongPointer.h>

namespace android {

// True when the four bytes at `data` begin a core frame (16-bit or 14-bit) or an extension
// substream.
bool isDtsSync(const uint8_t* data);

// Channels and sampling rate of the core frame whose sync is at `data`; bytes beyond `size` read as
// 0. A reserved rate index gives 0xFFFFFFFF. Outputs may be null.
void parseDtsCoreHeader(const uint8_t* data, size_t size, uint32_t* channels, uint32_t* rate);

// Finds the first frame and sets the format's MIME type, channel count and sampling rate by it.
// ERROR_MALFORMED, the format untouched, when there is none or its header is cut.
status_t parseDtsMetaData(AMediaFormat* meta, const sp<ABuffer>& sample);

}  // namespace android
