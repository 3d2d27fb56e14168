// SPDX-License-Identifier: Apache-2.0
//
// HEVC of libx265: the parameter sets in the configuration record against those of the record that
// ffmpeg writes into an MP4 file (ISO/IEC 14496-15, 8.3.3).

#include <media/NdkMediaFormat.h>

#include <map>

#include "tests/endtoend/codecs/Workshop.h"
#include "tests/support/LogCapture.h"

namespace avitest {
namespace {

constexpr size_t kHeaderSize = 23;
constexpr uint8_t kVideoSet = 32;
constexpr uint8_t kSequenceSet = 33;
constexpr uint8_t kPictureSet = 34;

// `message`: the encoder's message about itself, behind the parameter sets.
Arguments x265(const char* tag, bool message = false) {
    return pictures() +
           Arguments{"-c:v",         "libx265",
                     "-x265-params", std::string("log-level=none:info=") + (message ? "1" : "0"),
                     "-pix_fmt",     "yuv420p",
                     "-vtag",        tag};
}

// The parameter sets of a record by their kind. at() makes a short one an error of the test.
std::map<uint8_t, Bytes> parameterSets(const Bytes& record) {
    std::map<uint8_t, Bytes> result;
    size_t p = kHeaderSize;
    for (int arrays = record.at(kHeaderSize - 1); arrays > 0; --arrays) {
        const uint8_t kind = record.at(p) & 0x3F;
        if (kind <= kPictureSet) {
            EXPECT_EQ(record.at(p) & 0x80, 0x80) << "sets are missing";
        }
        EXPECT_EQ(record.at(p + 1) << 8 | record.at(p + 2), 1);
        const size_t length = size_t{record.at(p + 3)} << 8 | record.at(p + 4);
        p += 5;
        for (size_t i = 0; i < length; ++i)
            result[kind].push_back(record.at(p++));
    }
    return result;
}

class Hevc : public CodecsTest {
  protected:
    static std::string described() { return madeFile("hevc.mp4", x265("hvc1")); }
    // Parameter sets in the first sample only, and every unit behind a start code of four bytes.
    static Bytes inSamples(const std::string& mp4, const std::string& name) {
        return aviOf(videoStream("hevc", 96, 64, 25),
                     remuxed(mp4, name + ".hevc", {"-bsf:v", "hevc_mp4toannexb"}));
    }
    void openInSamples() { openFile(inSamples(described(), "hevc")); }

    static std::string inFormat() {
        return madeFile("hevc_global.avi", x265("hevc") + Arguments{"-flags", "+global_header"});
    }

    // The parameter sets of the opened file are those of an MP4 file's record.
    void expectSetsOf(const std::string& mp4) {
        const auto ours = parameterSets(buffer(AMEDIAFORMAT_KEY_CSD_HEVC));
        const auto theirs = parameterSets(knownStream(mp4).extradata);
        for (const uint8_t kind : {kVideoSet, kSequenceSet, kPictureSet}) {
            SCOPED_TRACE(int{kind});
            ASSERT_EQ(ours.count(kind), 1u);
            EXPECT_EQ(ours.at(kind), theirs.at(kind));
        }
        EXPECT_EQ(ours.size(), 3u);
    }
};

TEST_F(Hevc, ParameterSetsInTheFirstSampleAreFfmpegs) {
    openInSamples();
    expectSetsOf(described());
}

TEST_F(Hevc, EncodersMessageBehindTheParameterSetsIsNoneOfThem) {
    const std::string mp4 = madeFile("hevc_message.mp4", x265("hvc1", true));
    openFile(inSamples(mp4, "hevc_message"));
    expectSetsOf(mp4);
}

// The header of the record does not tell the stream's profile and level: decoders look at the sets.
TEST_F(Hevc, HeaderOfTheRecordIsFixed) {
    openInSamples();
    const Bytes header = {1,    1,    0, 0,    0,    0,    0,    0, 0, 0, 0, 0,
                          0x99, 0xF0, 0, 0xFC, 0xFC, 0xF8, 0xF8, 0, 0, 3, 3};
    EXPECT_EQ(firstBytes(buffer(AMEDIAFORMAT_KEY_CSD_HEVC), kHeaderSize), header);
}

TEST_F(Hevc, RecordEndsWithItsLastParameterSet) {
    openInSamples();
    size_t size = kHeaderSize;
    const auto sets = parameterSets(buffer(AMEDIAFORMAT_KEY_CSD_HEVC));
    for (const auto& [kind, bytes] : sets)
        size += 5 + bytes.size();
    EXPECT_EQ(buffer(AMEDIAFORMAT_KEY_CSD_HEVC).size(), size);
}

TEST_F(Hevc, ParameterSetsInTheFormatArePublishedAsTheyAre) {
    openPath(inFormat());
    const Bytes theirs = knownStream(inFormat()).extradata;
    ASSERT_FALSE(theirs.empty());
    const Bytes ours = buffer(AMEDIAFORMAT_KEY_CSD_HEVC);
    EXPECT_EQ(firstBytes(ours, theirs.size()), theirs);
    EXPECT_LE(ours.size(), theirs.size() + 1);  // the format chunk is even in length
}

TEST_F(Hevc, PictureIsFfmpegs) {
    openPath(inFormat());
    const KnownStream known = knownStream(inFormat());
    expectPicture("video/hevc", known, known.displayAspect);
    openInSamples();
    expectPicture("video/hevc", knownStream(described()), "1:1");  // the file says nothing of it
}

// libx265 puts three bytes in front of its slices, which do not end the run of parameter sets.
TEST_F(Hevc, ThreeByteStartCodeBehindTheParameterSetsIsNotSupported) {
    const LogCapture log;
    openPath(madeFile("hevc.avi", x265("hevc")));
    EXPECT_EQ(countTracks(), 0u);
    EXPECT_THAT(log, Logged(ANDROID_LOG_ERROR,
                            "generateHevcCodecData(): Found no sequence start! "
                            "UNSUPPORTED HEVC!"));
}

}  // namespace
}  // namespace avitest
