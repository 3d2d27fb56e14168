// SPDX-License-Identifier: Apache-2.0
//
// The scenarios that make the plug-in log, by what is in the file or what is done with it.

#pragma once

#include "tests/behaviour/logs/Play.h"

namespace avitest {

// OpeningScenarios.cpp
Play refused();
Play plainFile();
Play fileWithoutMovi();
Play fileWithoutSamples();
Play unreadableAtFirst();
Play noRiffAnyMore();
Play unreadableListing();
Play strayBytesBehindRiff();
Play unreadableFirstRiff();
Play unreadableFirstRiffChunk();
Play oversizedRiff();
Play strangeLists();
Play strayChunksBehindMovi();
Play twoIdx1();
Play idx1BesidesOpenDml();
Play secondRiffWithIndex();
Play secondRiffWithoutIndex();
Play secondRiffWithTwoIndexes();
Play secondRiffOfNoNeed();
Play secondRiffOversized();
Play unreadableSecondRiff();
Play unreadableSecondRiffChunk();
Play emptyHeaderList();
Play headerListOfTooFewStreams();
Play unreadableHeaderList();
Play streamListBeforeMainHeader();
Play shortMainHeader();
Play unreadableMainHeader();

// StreamScenarios.cpp
Play emptyStreamList();
Play streamListWithoutFormat();
Play unreadableStreamList();
Play formatBeforeHeader();
Play privateDataBeforeHeader();
Play nameBeforeHeader();
Play propertiesBeforeFormat();
Play everythingTwice();
Play shortStreamHeader();
Play unreadableStreamHeader();
Play videoWithoutRate();
Play shortFormat();
Play unreadableFormat();
Play unreadableExtraData();
Play formatWithTwoBytesMore();
Play audioBeforeVideo();
Play unknownCodecs();
Play avcRecord();
Play avcRecordOfAnotherVersion();
Play hevcRecord();
Play wmv();
Play wma();
Play vorbis();

// IndexScenarios.cpp
Play cutIdx1();
Play unreadableIdx1();
Play idx1BeyondTheFile();
Play idx1WithEntriesRepeated();
Play superIndex();
Play indexBeforeFormat();
Play indexOfTenFramesBeforeFormat();
Play shortOpenDmlIndex();
Play unreadableOpenDmlIndex();
Play unknownOpenDmlIndex();
Play superIndexThatIsTooShort();
Play unreadableSuperEntry();
Play unreadableStandardIndex();
Play unreadableStandardEntries();
Play standardIndexBehindTheFile();
Play shortStandardIndex();
Play fieldIndex();
Play indexesThatRepeatEachOther();
Play indexOfTheSecondRiffOverAFullTable();
Play scannedFile();
Play cutMovi();
Play unreadableMovi();
Play scanOfUnknownChunks();
Play scanOfEmptyHeaders();
Play trackWithoutSamples();
Play audioWithoutRate();
Play audioLongerThanVideo();

// CodecScenarios.cpp
Play avcStartCodes();
Play avcWithAspectRatio();
Play avcWithoutIdr();
Play avcWithoutSps();
Play avcWithoutPps();
Play avcUnreadable();
Play hevc();
Play hevcWithoutSets();
Play hevcUnreadable();
Play mpeg2();
Play mpeg2WithoutHeader();
Play mpeg2Unreadable();
Play aacAdts();
Play aacExtraData();
Play aacOfImpossibleRate();
Play mp3Frames();
Play mp3Unconfirmed();
Play mp3OfOddSampleSize();
Play mp3Blocks();
Play mp3Unreadable();
Play pcmThatIsDts();
Play extensiblePcm();
Play ac3();
Play dtsCoreFrames();
Play dtsSubstream();
Play dtsSubstreamWithoutStaticFields();
Play dtsCoreInSubstream();

// SourceScenarios.cpp
Play picturesAndSeeks();
Play picturesWithoutIndex();
Play picturesWithoutKeys();
Play audioSeeks();
Play subtitles();
Play mpeg4Headers();
Play prefixedNalUnits();
Play malformedNalUnits();
Play nalUnitsBeyondTheBuffer();
Play mpegAudioInPieces();
Play mpegAudioInFewPieces();
Play mpegAudioCutOff();
Play mpegAudioUnreadable();
Play chunkLargerThanAnyBuffer();
Play unreadableSample();
Play slowSample();
Play noBufferForASample();
Play emptyAnswerForASample();
Play emptyAnswerForAWideSample();
Play emptyAnswerForAFrame();
Play startedTwice();
Play readBeforeStart();

}  // namespace avitest
