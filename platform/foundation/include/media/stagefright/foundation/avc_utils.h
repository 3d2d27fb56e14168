// SPDX-License-Identifier: Apache-2.0
//
// AVC (ISO/IEC 14496-10) helpers: splitting a byte stream into NAL units and reading sequence
// parameter sets. Free functions without state; any thread.
#pragma once

#include <media/stagefright/foundation/ABuffer.h>
#include <utils/Errors.h>
#include <utils/StrongPointer.h>

#include <cstddef>
#include <cstdint>

namespace android {

class ABitReader;

/// Reads an unsigned Exp-Golomb code, ue(v). Aborts over the end, and for a code beyond 2^32 - 2.
unsigned parseUE(ABitReader* br);

/// Finds the first NAL unit in the byte stream of `*data`, `*size`: what follows its start code
/// (00 00 01, after any number of zeros) up to the next start code, without the zeros before that
/// one. `startCodeFollows` says that the stream is complete: its end then ends a unit as a start
/// code would.
///
/// OK: the unit is `*nalStart`, `*nalSize`, pointing into the stream; the size is 0 when two start
/// codes meet or when one ends the stream. `*data`, `*size` become the rest, from the next start
/// code on, or null and 0 when fewer than 2 bytes follow that one. -EAGAIN: there is no start code
/// (`*data`, `*size` become the last 2 bytes, which more data may complete to a code), or the unit
/// does not end (they stay as they were). `*nalStart` is null.
status_t getNextNALUnit(const uint8_t** data, size_t* size, const uint8_t** nalStart,
                        size_t* nalSize, bool startCodeFollows = false);

/// Reads the picture size, after cropping, and the sample aspect ratio from a sequence parameter
/// set: a NAL unit with its header byte, of at least 1 byte. The ratio is 0:0 when the set has none
/// or a reserved one; either of its pointers may be null. A width or height that 31 bits do not
/// hold, or that cropping leaves nothing of, is 0.
///
/// As on the device the set is read otherwise than the standard says: emulation prevention bytes
/// count as data, only profiles 100, 110, 122, 244, 44, 83 and 86 have a chroma format, of any
/// value, and there are eight scaling lists also for 4:4:4. Where that, or a cut, makes it read
/// over the end, the process aborts.
void FindAVCDimensions(const sp<ABuffer>& seqParamSet, int32_t* width, int32_t* height,
                       int32_t* sarWidth = nullptr, int32_t* sarHeight = nullptr);

/// The name of a profile_idc, "Unknown" for others.
const char* AVCProfileToString(uint8_t profile);

}  // namespace android
