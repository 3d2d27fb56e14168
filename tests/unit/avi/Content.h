// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "avi/FileReader.h"
#include "service/FaultySource.h"
#include "service/MemorySource.h"
#include "tests/support/ByteWriter.h"

namespace android {

// Bytes behind the interface that the parsers read through.
class Content {
  public:
    explicit Content(const avitest::Bytes& bytes)
        : mMemory(bytes),
          mFaulty(mMemory),
          mPlain(mFaulty),
          mReader(new DataSourceHelper(mPlain.get())) {}
    FileReader& reader() { return mReader; }
    service::FaultySource& source() { return mFaulty; }

  private:
    service::MemorySource mMemory;
    service::FaultySource mFaulty;
    service::PlainDataSource mPlain;
    FileReader mReader;
};

}  // namespace android
