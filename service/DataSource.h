// SPDX-License-Identifier: Apache-2.0
// The bytes a plug-in reads from, as the service sees them, and the plain record through which the
// plug-in sees the same source. A source does not change while it is open.
// Threads: readAt and getSize may be called from several threads at once on every source here.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>

#include <media/MediaExtractorPluginApi.h>
#include <utils/Errors.h>

namespace android::service {

/** A source that cannot be opened; what() names the source and the reason in one line. */
class SourceError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

/** Random-access bytes. Implementations are safe to read from several threads at once. */
class DataSource {
  public:
    /** Bits of flags(), with the values a plug-in is given on the device. */
    enum Flags : uint32_t {
        kWantsPrefetching = 1,
        kStreamedFromLocalHost = 2,
        kIsCachingDataSource = 4,
        kIsHttpBasedSource = 8,
        kIsLocalFileSource = 16,
    };

    DataSource() = default;
    DataSource(const DataSource&) = delete;
    DataSource& operator=(const DataSource&) = delete;
    virtual ~DataSource() = default;

    /**
     * Reads up to `size` bytes at byte `offset` into `data`.
     * Returns the number of bytes read, which is smaller than `size` at the end of the source, 0 at
     * or beyond the end, or a negative errno value (a negative offset gives -EINVAL).
     */
    virtual ssize_t readAt(off64_t offset, void* data, size_t size) = 0;

    /** Stores the length in bytes; on failure returns a status other than OK, `size` untouched. */
    virtual status_t getSize(off64_t* size) = 0;

    /** A combination of Flags. */
    virtual uint32_t flags() { return 0; }

    /** Where the source comes from; none for sources that are handed over as open files or memory.
     */
    virtual std::optional<std::string> getUri() { return std::nullopt; }
};

/**
 * The CDataSource record that forwards to a DataSource.
 * The record is valid while this object lives; the source must outlive it.
 */
class PlainDataSource {
  public:
    explicit PlainDataSource(DataSource& source);
    PlainDataSource(const PlainDataSource&) = delete;
    PlainDataSource& operator=(const PlainDataSource&) = delete;

    /** The record to hand to a plug-in; its address never changes. */
    CDataSource* get() { return &mRecord; }

  private:
    CDataSource mRecord{};
};

}  // namespace android::service
