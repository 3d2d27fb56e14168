// SPDX-License-Identifier: Apache-2.0
//
// MPEG-2 and MPEG-4 video: the stream headers in the descriptor, and what needs none.

#include <media/NdkMediaFormat.h>

#include "tests/endtoend/codecs/Workshop.h"

namespace avitest {
namespace {

constexpr size_t kDescriptorHeader = 25;
constexpr size_t kGroupHeader = 8;

// A length of the descriptor: seven bits in each of two bytes.
size_t lengthAt(const Bytes& descriptor, size_t position) {
    EXPECT_EQ(descriptor.at(position) & 0x80, 0x80);
    return size_t{descriptor.at(position) & 0x7Fu} << 7 | descriptor.at(position + 1);
}

class VideoHeaders : public CodecsTest {
  protected:
    static std::string mpeg2(const std::string& name, const Arguments& options = {}) {
        return madeFile(name, pictures() + Arguments{"-c:v", "mpeg2video"} + options);
    }
};

TEST_F(VideoHeaders, OfMpeg2AreFfmpegsAndTheGroupOfPictures) {
    const std::string path = mpeg2("mpeg2.avi");
    openPath(path);
    const Bytes descriptor = buffer(AMEDIAFORMAT_KEY_ESDS);
    ASSERT_GT(descriptor.size(), kDescriptorHeader);
    const Bytes headers(descriptor.begin() + kDescriptorHeader, descriptor.end());
    const Bytes theirs = knownStream(path).extradata;
    ASSERT_GE(theirs.size(), 22u);  // sequence header and extension
    EXPECT_EQ(firstBytes(headers, theirs.size()), theirs);
    ASSERT_EQ(headers.size(), theirs.size() + kGroupHeader);
    const Bytes group(headers.end() - kGroupHeader, headers.end());
    EXPECT_EQ(firstBytes(group, 4), (Bytes{0, 0, 1, 0xB8}));
}

TEST_F(VideoHeaders, OfMpeg2AreWrappedInADescriptor) {
    openPath(mpeg2("mpeg2.avi"));
    const Bytes descriptor = buffer(AMEDIAFORMAT_KEY_ESDS);
    ASSERT_GT(descriptor.size(), kDescriptorHeader);
    const size_t length = descriptor.size() - kDescriptorHeader;
    EXPECT_EQ(descriptor[0], 3);
    EXPECT_EQ(lengthAt(descriptor, 1), length + 22);
    EXPECT_EQ(descriptor[6], 4);
    EXPECT_EQ(lengthAt(descriptor, 7), length + 16);
    EXPECT_EQ(descriptor[9], 0x40);
    EXPECT_EQ(Bytes(descriptor.begin() + 10, descriptor.begin() + 22), Bytes(12, 0));
    EXPECT_EQ(descriptor[22], 5);
    EXPECT_EQ(lengthAt(descriptor, 23), length);
}

TEST_F(VideoHeaders, OfMpeg1AreWrappedLikewise) {
    const std::string path = madeFile("mpeg1.avi", pictures() + Arguments{"-c:v", "mpeg1video"});
    openPath(path);
    const Bytes theirs = knownStream(path).extradata;
    const Bytes descriptor = buffer(AMEDIAFORMAT_KEY_ESDS);
    ASSERT_GT(descriptor.size(), kDescriptorHeader);
    ASSERT_FALSE(theirs.empty());
    EXPECT_EQ(
        firstBytes(Bytes(descriptor.begin() + kDescriptorHeader, descriptor.end()), theirs.size()),
        theirs);
}

TEST_F(VideoHeaders, OfMpeg2LeaveThePictureAsItIs) {
    const std::string path = mpeg2("mpeg2.avi");
    openPath(path);
    const KnownStream known = knownStream(path);
    expectPicture("video/mpeg2", known, known.displayAspect);
}

TEST_F(VideoHeaders, OfMpeg4StayInTheSamples) {
    const std::string path =
        madeFile("mpeg4.avi", pictures() + Arguments{"-c:v", "mpeg4", "-vtag", "FMP4"});
    openPath(path);
    const KnownStream known = knownStream(path);
    expectPicture("video/mp4v-es", known, known.displayAspect);
    EXPECT_TRUE(buffer(AMEDIAFORMAT_KEY_ESDS).empty());
    EXPECT_TRUE(buffer(AMEDIAFORMAT_KEY_CSD_0).empty());
    // The first sample begins with the headers that ffmpeg keeps apart.
    const Bytes theirs = known.extradata;
    ASSERT_FALSE(theirs.empty());
    const std::vector<Sample> samples = readAll(0);
    ASSERT_FALSE(samples.empty());
    EXPECT_EQ(firstBytes(samples[0].bytes, theirs.size()), theirs);
}

}  // namespace
}  // namespace avitest
