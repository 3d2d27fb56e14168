// SPDX-License-Identifier: Apache-2.0
// What the tests know of the plug-in that GoodPlugin.cpp builds.
//
// It plays sources of four magic bytes and a body, each body byte a sample of one byte at its index
// in milliseconds, on one track. The magic chooses how it behaves:
//     GOOD  claims the source with confidence 0.75
//     NOCO  claims it but leaves the confidence unwritten
//     ZERO  claims it with confidence 0
//     NULL  claims it, but its creator gives no extractor
// Anything else it does not claim. A body byte 'E' reads as an error, and 'B' as an error along
// with a buffer.
#pragma once

/** How many objects of the plug-in are alive, by kind. */
struct GoodPluginObjects {
    int metas = 0;
    int extractors = 0;
    int tracks = 0;
};

/** The exported function `goodPluginObjects` has this type. */
using GoodPluginObjectsFunc = const GoodPluginObjects* (*)();
