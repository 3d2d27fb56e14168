// SPDX-License-Identifier: Apache-2.0
//
// DTS extension substreams: lossless, low bit rate, and the core carried inside.

#include "tests/behaviour/codecs/DtsBytes.h"

namespace avitest {
namespace {

using ::testing::Contains;

constexpr char kHd[] = "audio/vnd.dts.hd";
constexpr char kExpress[] = "audio/vnd.dts.hd;profile=lbr";

class DtsSubstream : public DtsTest {
  protected:
    SubstreamHeader mHeader;

    // With the header just long enough for its fields.
    void openFitting(uint32_t word) {
        mHeader.size = static_cast<uint32_t>(mHeader.bits().bytes().size());
        openFirst(mHeader.frame(word));
    }
    // A core of this format inside a substream, and the word behind it.
    Bytes coreInside(uint32_t behind) const {
        Bytes core = wordBytes(kCoreInSubstream) + dtsCoreFields(9, 8, 1, 80);
        core.resize(80, 0x33);
        return mHeader.header() + core + wordBytes(behind) + Bytes(8, 0x44);
    }
};

TEST_F(DtsSubstream, LosslessAssetIsHd) {
    mHeader.rateIndex = 13;
    mHeader.channels = 8;
    openFirst(mHeader.frame(kLosslessAsset));
    expectFormat(kHd, 8, 96000);
    EXPECT_THAT(
        log(),
        Contains(debug("[audio/vnd.dts.hd] offset 0, dtsType 2, chanCount 8, sampleRate 96000")));
}

TEST_F(DtsSubstream, LowBitRateAssetIsExpress) {
    openFirst(mHeader.frame(kExpressAsset));
    expectFormat(kExpress, 2, 48000);
    EXPECT_THAT(
        log(),
        Contains(debug(
            "[audio/vnd.dts.hd;profile=lbr] offset 0, dtsType 1, chanCount 2, sampleRate 48000")));
}

TEST_F(DtsSubstream, OtherAssetIsPlainDts) {
    mHeader.rateIndex = 13;
    mHeader.channels = 8;
    openFirst(mHeader.frame(0x5A5A5A5A));
    expectFormat(kDts, 2, 48000);
}

TEST_F(DtsSubstream, EverySamplingRateIsPublished) {
    const int kRates[] = {8000,   16000,  32000, 64000, 128000, 22050, 44100,  88200,
                          176400, 352800, 12000, 24000, 48000,  96000, 192000, 384000};
    for (uint32_t i = 0; i < 16; ++i) {
        SCOPED_TRACE(i);
        mHeader.rateIndex = i;
        openFirst(mHeader.frame(kLosslessAsset));
        expectFormat(kHd, 2, kRates[i]);
    }
}

TEST_F(DtsSubstream, EveryChannelCountIsPublished) {
    for (const uint32_t channels : {1u, 2u, 6u, 128u, 256u}) {
        mHeader.channels = channels;
        openFirst(mHeader.frame(kExpressAsset));
        expectFormat(kExpress, static_cast<int32_t>(channels), 48000);
    }
}

TEST_F(DtsSubstream, WithoutStaticFieldsTheFormatIsADefault) {
    mHeader.staticFields = false;
    mHeader.rateIndex = 13;
    mHeader.channels = 8;
    openSamplesLogged(mStream, {mHeader.frame(kLosslessAsset)});
    expectFormat(kHd, 2, 48000);
    EXPECT_THAT(log(), Contains(verbose("Ext substream staticFieldsPresent 0")));
    EXPECT_THAT(
        log(),
        Contains(verbose("Ext substream staticFieldsPresent is false, set to default value")));
    EXPECT_EQ(mLog.count("sampleRateIndex"), 0u);
}

// Without static fields nothing of what follows their flag is needed, so that the header may end
// anywhere after it: the flag is bit 68, or 76 of a large header.
TEST_F(DtsSubstream, WithoutStaticFieldsTheHeaderMayEndAfterTheirFlag) {
    mHeader.staticFields = false;
    for (const bool large : {false, true}) {
        mHeader.large = large;
        for (uint32_t size = large ? 10 : 9; size <= 14; ++size) {
            SCOPED_TRACE(format("%u bytes, large %d", size, large));
            mHeader.size = size;
            openFirst(mHeader.frame(kLosslessAsset));
            expectFormat(kHd, 2, 48000);
            openFirst(mHeader.frame(kExpressAsset));
            expectFormat(kExpress, 2, 48000);
        }
    }
}

TEST_F(DtsSubstream, EachOptionalFieldIsSkipped) {
    const std::function<void(SubstreamHeader&)> kOptions[] = {
        [](SubstreamHeader& h) { h.timeStamp = true; },
        [](SubstreamHeader& h) { h.type = true; },
        [](SubstreamHeader& h) { h.language = true; },
        [](SubstreamHeader& h) { h.text = 0; },
        [](SubstreamHeader& h) { h.text = 40; },
        [](SubstreamHeader& h) {
            h.mixing = {0, 0};
        },
        [](SubstreamHeader& h) {
            h.mixing = {3, 3};
        },
        [](SubstreamHeader& h) { h.assets = 8; },
        [](SubstreamHeader& h) { h.masks = {1}; },
        [](SubstreamHeader& h) { h.masks = {1, 0, 1, 0, 1, 1, 0, 1}; },
        [](SubstreamHeader& h) { h.index = 3; },
        [](SubstreamHeader& h) {
            h.index = 3, h.masks = {0xA, 0x5, 0xF};
        },
        [](SubstreamHeader& h) { h.large = true; },
    };
    size_t number = 0;
    for (const auto& option : kOptions) {
        SCOPED_TRACE(number++);
        mHeader = SubstreamHeader();
        mHeader.rateIndex = 7;
        mHeader.channels = 7;
        option(mHeader);
        openFitting(kLosslessAsset);
        expectFormat(kHd, 7, 88200);
    }
}

TEST_F(DtsSubstream, LargeHeaderWithEverythingIsRead) {
    mHeader.large = true;
    mHeader.index = 3;
    mHeader.timeStamp = true;
    mHeader.masks = std::vector<uint32_t>(8, 0xF);
    mHeader.assets = 8;
    mHeader.mixing = {3, 3};
    mHeader.type = mHeader.language = true;
    mHeader.text = 1023;
    mHeader.rateIndex = 14;
    mHeader.channels = 11;
    openFitting(kExpressAsset);
    expectFormat(kExpress, 11, 192000);
}

TEST_F(DtsSubstream, LongestHeadersAreRead) {
    mHeader.size = 256;
    openFirst(mHeader.frame(kLosslessAsset));
    expectFormat(kHd, 2, 48000);
    mHeader.large = true;
    mHeader.size = 4096;
    openFirst(mHeader.frame(kLosslessAsset));
    expectFormat(kHd, 2, 48000);
}

TEST_F(DtsSubstream, ExtractLogTellsTheFields) {
    openSamplesLogged(mStream, {Bytes(2, 0x11) + mHeader.frame(kLosslessAsset)});
    EXPECT_THAT(log(), Contains(verbose("offset 2, startCode 0x64582025")));
    EXPECT_THAT(log(), Contains(verbose("syncValue 0x41a29547")));
    EXPECT_THAT(log(), Contains(verbose("Ext substream staticFieldsPresent 1")));
    EXPECT_THAT(log(), Contains(verbose("Ext substream sampleRateIndex 12")));
}

TEST_F(DtsSubstream, ExtractLogOffLeavesTheFieldsOut) {
    openFirst(mHeader.frame(kLosslessAsset));
    EXPECT_EQ(mLog.count("syncValue"), 0u);
    EXPECT_EQ(mLog.count("Ext substream"), 0u);
}

TEST_F(DtsSubstream, CoreInsideGivesTheFormat) {
    openSamplesLogged(mStream, {coreInside(0x12345678)});
    expectFormat(kDts, 6, 44100);
    EXPECT_THAT(log(), Contains(verbose("syncValue 0x2b09261")));
    EXPECT_THAT(log(), Contains(verbose("Core substream channelMode 9")));
    EXPECT_THAT(log(), Contains(verbose("syncValue2 0x12345678")));
    EXPECT_EQ(mLog.count("Ext substream"), 0u);
}

TEST_F(DtsSubstream, LosslessAssetBehindTheCoreIsHd) {
    openFirst(coreInside(kLosslessAsset));
    expectFormat(kHd, 6, 44100);
    EXPECT_THAT(
        log(),
        Contains(debug("[audio/vnd.dts.hd] offset 0, dtsType 2, chanCount 6, sampleRate 44100")));
}

TEST_F(DtsSubstream, LowBitRateAssetBehindTheCoreIsPlainDts) {
    openFirst(coreInside(kExpressAsset));
    expectFormat(kDts, 6, 44100);
}

TEST_F(DtsSubstream, CoreWithoutAWordBehindItIsPlainDts) {
    const Bytes whole = coreInside(kLosslessAsset);
    for (const size_t missing : {9u, 10u, 12u, 60u}) {
        SCOPED_TRACE(missing);
        openFirst(ByteWriter().bytes(whole).cut(whole.size() - missing).take());
        expectFormat(kDts, 6, 44100);
    }
}

TEST_F(DtsSubstream, SampleCutInsideTheHeaderHasNoFrame) {
    const size_t whole = mHeader.size + 4;
    for (size_t kept = 4; kept < whole; ++kept) {
        SCOPED_TRACE(kept);
        openFirst(mHeader.frame(kLosslessAsset, kept));
        expectNoFrame();
    }
    openFirst(mHeader.frame(kLosslessAsset, whole));
    expectFormat(kHd, 2, 48000);
}

TEST_F(DtsSubstream, HeaderThatEndsBeforeItsFieldsHasNoFrame) {
    const auto needed = static_cast<uint32_t>(mHeader.bits().bytes().size());
    for (uint32_t size = 7; size < needed; ++size) {
        SCOPED_TRACE(size);
        mHeader.size = size;
        openFirst(mHeader.frame(kExpressAsset));
        expectNoFrame();
    }
    mHeader.size = needed;
    openFirst(mHeader.frame(kExpressAsset));
    expectFormat(kExpress, 2, 48000);
}

TEST_F(DtsSubstream, NextSampleIsTriedAfterOneWithoutAFrame) {
    openSamples(mStream, {mHeader.frame(kLosslessAsset, 20), dtsCore(9, 8, 1)});
    expectFormat(kDts, 6, 44100);
}

TEST_F(DtsSubstream, HeaderOfOnesHasNoFrame) {
    openFirst(wordBytes(0x64582025) + Bytes(60, 0xFF));
    expectNoFrame();
}

}  // namespace
}  // namespace avitest
