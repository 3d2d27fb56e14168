// SPDX-License-Identifier: Apache-2.0
//
// AVC of libx264: the configuration record against the one that ffmpeg writes into an MP4 file of
// the same stream (ISO/IEC 14496-15, 5.2.4).

#include <media/NdkMediaFormat.h>

#include "tests/endtoend/codecs/Workshop.h"

namespace avitest {
namespace {

// An avcC with one parameter set of each kind. at() makes a short one an error of the test.
struct AvcRecord {
    uint8_t version = 0;
    uint8_t profile = 0;
    uint8_t constraints = 0;
    uint8_t level = 0;
    unsigned lengthSize = 0;
    Bytes sequenceSet;
    Bytes pictureSet;
    size_t size = 0;  // without what follows the parameter sets
};

Bytes unitAt(const Bytes& record, size_t position) {
    const size_t length = size_t{record.at(position)} << 8 | record.at(position + 1);
    Bytes result;
    for (size_t i = 0; i < length; ++i)
        result.push_back(record.at(position + 2 + i));
    return result;
}

AvcRecord parseRecord(const Bytes& record) {
    AvcRecord result;
    result.version = record.at(0);
    result.profile = record.at(1);
    result.constraints = record.at(2);
    result.level = record.at(3);
    result.lengthSize = (record.at(4) & 3u) + 1;
    EXPECT_EQ(record.at(4) & 0xFC, 0xFC);
    EXPECT_EQ(record.at(5), 0xE1);
    result.sequenceSet = unitAt(record, 6);
    const size_t pictures = 8 + result.sequenceSet.size();
    EXPECT_EQ(record.at(pictures), 1);
    result.pictureSet = unitAt(record, pictures + 1);
    result.size = pictures + 3 + result.pictureSet.size();
    return result;
}

// The units of a stream, without start codes of whatever length.
std::vector<Bytes> unitsOf(const Bytes& stream) {
    std::vector<Bytes> result;
    size_t zeros = 0;
    for (const uint8_t byte : stream) {
        if (byte == 1 && zeros >= 2) {
            if (!result.empty()) result.back().resize(result.back().size() - zeros);
            result.emplace_back();
        } else if (!result.empty()) {
            result.back().push_back(byte);
        }
        zeros = byte == 0 ? zeros + 1 : 0;
    }
    return result;
}

const Arguments kX264 = {"-c:v", "libx264", "-g", "10", "-pix_fmt", "yuv420p"};

// A stream and a name for its files.
struct AvcRecipe {
    const char* name;
    Arguments options;
};

std::vector<AvcRecipe> recipes() {
    return {
        {"high", {"-bf", "0"}},
        {"reordered", {"-bf", "2"}},
        {"baseline", {"-profile:v", "baseline", "-level", "3.1"}},
        {"main", {"-profile:v", "main", "-level", "4.1"}},
        {"cropped", {"-vf", "crop=90:58"}},
        {"wide", {"-vf", "setsar=16/11"}},
    };
}

class Avc : public CodecsTest {
  protected:
    // Start codes in the samples, parameter sets in the first.
    static std::string startCodes(const AvcRecipe& recipe) {
        return madeFile(std::string("avc_") + recipe.name + ".avi",
                        pictures() + kX264 + recipe.options);
    }
    // The same stream as ffmpeg describes it in MP4.
    static std::string described(const AvcRecipe& recipe) {
        return madeFile(std::string("avc_") + recipe.name + ".mp4",
                        pictures() + kX264 + recipe.options);
    }
    // Length prefixes, and the MP4 file's record in the stream's format.
    static std::string lengthPrefixed(const AvcRecipe& recipe) {
        return remuxed(described(recipe), std::string("avc_prefixed_") + recipe.name + ".avi",
                       {"-vtag", "avc1"});
    }
};

TEST_F(Avc, RecordOfAStartCodeStreamIsFfmpegsFieldByField) {
    for (const AvcRecipe& recipe : recipes()) {
        SCOPED_TRACE(recipe.name);
        openPath(startCodes(recipe));
        const Bytes record = buffer(AMEDIAFORMAT_KEY_CSD_AVC);
        const AvcRecord ours = parseRecord(record);
        const AvcRecord theirs = parseRecord(knownStream(described(recipe)).extradata);
        EXPECT_EQ(ours.version, theirs.version);
        EXPECT_EQ(ours.profile, theirs.profile);
        EXPECT_EQ(ours.constraints, theirs.constraints);
        EXPECT_EQ(ours.level, theirs.level);
        EXPECT_EQ(ours.sequenceSet, theirs.sequenceSet);
        EXPECT_EQ(ours.pictureSet, theirs.pictureSet);
        // Players expect 2 here, though samples have start codes; and no extension fields.
        EXPECT_EQ(ours.lengthSize, 2u);
        EXPECT_EQ(record.size(), ours.size);
    }
}

// The file's own ratio is that of the whole picture; the parameter set's wins if it is not 1:1.
TEST_F(Avc, PictureOfAStartCodeStreamIsTheParameterSets) {
    for (const AvcRecipe& recipe : recipes()) {
        SCOPED_TRACE(recipe.name);
        openPath(startCodes(recipe));
        const KnownStream known = knownStream(described(recipe));
        const bool isSquare = known.sampleAspect == "1:1";
        expectPicture("video/avc", known, isSquare ? known.displayAspect : known.sampleAspect);
    }
}

TEST_F(Avc, AspectOfAParameterSetIsPublished) {
    openPath(startCodes({"wide", {"-vf", "setsar=16/11"}}));
    EXPECT_EQ(number(AMEDIAFORMAT_KEY_SAR_WIDTH), 16);
    EXPECT_EQ(number(AMEDIAFORMAT_KEY_SAR_HEIGHT), 11);
}

TEST_F(Avc, RecordOfALengthPrefixedStreamIsFfmpegsOwn) {
    for (const AvcRecipe& recipe : recipes()) {
        SCOPED_TRACE(recipe.name);
        openPath(lengthPrefixed(recipe));
        EXPECT_EQ(mime(), "video/avc");
        const Bytes theirs = knownStream(described(recipe)).extradata;
        const Bytes record = buffer(AMEDIAFORMAT_KEY_CSD_AVC);
        EXPECT_EQ(firstBytes(record, theirs.size()), theirs);
        // The format chunk is even in length.
        EXPECT_EQ(record.size(), theirs.size() + theirs.size() % 2);
    }
}

// ffmpeg's own conversion puts parameter sets into the stream, which the samples do not have;
// without them its units are those that have to be read.
TEST_F(Avc, SamplesOfALengthPrefixedStreamHaveStartCodes) {
    const AvcRecipe recipe = recipes()[0];
    openPath(lengthPrefixed(recipe));
    const std::string stream =
        remuxed(described(recipe), "avc_high.h264",
                {"-bsf:v", "h264_mp4toannexb,filter_units=remove_types=7-8"});
    Bytes read;
    for (const Sample& sample : readAll(0)) {
        EXPECT_EQ(firstBytes(sample.bytes, 4), (Bytes{0, 0, 0, 1}));
        read.insert(read.end(), sample.bytes.begin(), sample.bytes.end());
    }
    EXPECT_EQ(unitsOf(read), unitsOf(contentOf(stream)));
}

TEST_F(Avc, StreamOfFewFramesHasNoRecord) {
    openPath(madeFile("avc_short.avi", pictures() + kX264 + Arguments{"-frames:v", "9"}));
    EXPECT_EQ(mime(), "video/avc");
    EXPECT_TRUE(buffer(AMEDIAFORMAT_KEY_CSD_AVC).empty());
}

TEST_F(Avc, StreamOfTenFramesHasARecord) {
    openPath(madeFile("avc_ten.avi", pictures() + kX264 + Arguments{"-frames:v", "10"}));
    EXPECT_FALSE(buffer(AMEDIAFORMAT_KEY_CSD_AVC).empty());
}

}  // namespace
}  // namespace avitest
