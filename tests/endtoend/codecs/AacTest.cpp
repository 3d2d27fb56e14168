// SPDX-License-Identifier: Apache-2.0
//
// AAC with and without ADTS headers: the descriptor's AudioSpecificConfig (ISO/IEC
// 14496-3, 1.6.2.1) against the one that ffmpeg writes.

#include <media/NdkMediaFormat.h>

#include "tests/endtoend/codecs/Workshop.h"

namespace avitest {
namespace {

constexpr size_t kDescriptorSize = 24;
constexpr size_t kConfigAt = 22;

struct Format {
    unsigned channels;
    unsigned rate;
};

// The first two bytes of the configuration in a descriptor, which have its fields.
struct AacConfig {
    unsigned objectType = 0;
    unsigned rateIndex = 0;
    unsigned channels = 0;
};

AacConfig parseConfig(const Bytes& bytes) {
    AacConfig config;
    config.objectType = bytes.at(0) >> 3;
    config.rateIndex = (bytes.at(0) & 7u) << 1 | bytes.at(1) >> 7;
    config.channels = bytes.at(1) >> 3 & 15u;
    return config;
}

class Aac : public CodecsTest {
  protected:
    static std::string nameOf(const Format& format) {
        return std::to_string(format.channels) + "_" + std::to_string(format.rate);
    }
    static std::string raw(const Format& format) {
        return madeFile("aac_" + nameOf(format) + ".avi",
                        sound(format.channels, format.rate) + Arguments{"-c:a", "aac"});
    }
    static std::string adts(const Format& format) {
        const std::string stream =
            madeFile("aac_" + nameOf(format) + ".aac",
                     sound(format.channels, format.rate) + Arguments{"-c:a", "aac"});
        return remuxed(stream, "adts_" + nameOf(format) + ".avi");
    }
    // What ffmpeg makes of an AVI file's stream.
    static Bytes ffmpegsConfig(const std::string& path, const std::string& name) {
        return knownStream(remuxed(path, name + ".m4a", {"-bsf:a", "aac_adtstoasc"})).extradata;
    }

    void expectDescriptor(const Bytes& theirs) {
        const Bytes descriptor = buffer(AMEDIAFORMAT_KEY_ESDS);
        ASSERT_EQ(descriptor.size(), kDescriptorSize);
        const Bytes header = {3, 0x16, 0, 0, 0, 4, 0x11, 0x40, 0, 0, 0,
                              0, 0,    0, 0, 0, 0, 0,    0,    0, 5, 2};
        EXPECT_EQ(firstBytes(descriptor, kConfigAt), header);
        const AacConfig ours = parseConfig(Bytes(descriptor.begin() + kConfigAt, descriptor.end()));
        const AacConfig expected = parseConfig(theirs);
        EXPECT_EQ(ours.objectType, expected.objectType);
        EXPECT_EQ(ours.rateIndex, expected.rateIndex);
        EXPECT_EQ(ours.channels, expected.channels);
    }
};

const Format kFormats[] = {{2, 44100}, {1, 22050}, {2, 48000}, {1, 8000}, {2, 32000}};

TEST_F(Aac, ConfigurationOfRawFramesIsThatOfTheFormat) {
    for (const Format& format : kFormats) {
        SCOPED_TRACE(nameOf(format));
        const std::string path = raw(format);
        openPath(path);
        expectSound("audio/mp4a-latm", knownStream(path));
        expectDescriptor(knownStream(path).extradata);
        EXPECT_FALSE(number(AMEDIAFORMAT_KEY_IS_ADTS).has_value());
    }
}

TEST_F(Aac, ConfigurationOfAdtsFramesIsThatOfTheirHeaders) {
    for (const Format& format : kFormats) {
        SCOPED_TRACE(nameOf(format));
        const std::string path = adts(format);
        openPath(path);
        expectSound("audio/mp4a-latm", knownStream(path));
        expectDescriptor(ffmpegsConfig(path, "adts_" + nameOf(format)));
        EXPECT_EQ(number(AMEDIAFORMAT_KEY_IS_ADTS), 1);
    }
}

TEST_F(Aac, ProfileIsLowComplexity) {
    for (const std::string& path : {raw({2, 44100}), adts({2, 44100})}) {
        openPath(path);
        EXPECT_EQ(number(AMEDIAFORMAT_KEY_AAC_PROFILE), 1);
    }
}

// ffmpeg writes more than two channels in the extensible format, which is taken for PCM or what can
// be hidden in it.
TEST_F(Aac, OfSixChannelsIsTakenForPcm) {
    openPath(raw({6, 48000}));
    EXPECT_EQ(mime(), "audio/raw");
    EXPECT_TRUE(buffer(AMEDIAFORMAT_KEY_ESDS).empty());
}

TEST_F(Aac, FramesAreFfmpegs) {
    for (const std::string& path : {raw({2, 44100}), adts({2, 44100})}) {
        openPath(path);
        EXPECT_EQ(framesOf(readAll(0)), knownFrames(path));
    }
}

}  // namespace
}  // namespace avitest
