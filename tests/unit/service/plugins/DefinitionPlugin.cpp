// SPDX-License-Identifier: Apache-2.0
// A plug-in that is nothing but its definition, each field of which the build can change.
#include <media/MediaExtractorPluginApi.h>

#ifndef PLUGIN_VERSION
#define PLUGIN_VERSION 3
#endif
#ifndef PLUGIN_ENTRY
#define PLUGIN_ENTRY GETEXTRACTORDEF
#endif
#ifndef PLUGIN_UUID_BYTE
#define PLUGIN_UUID_BYTE 0x5a
#endif
#ifndef PLUGIN_NAME
#define PLUGIN_NAME "Definition"
#endif
#ifndef PLUGIN_SNIFFER
#define PLUGIN_SNIFFER claimNothing
#endif
#ifndef PLUGIN_TYPES
#define PLUGIN_TYPES types
#endif

namespace android {

[[maybe_unused]] static const char* types[] = {"definition", nullptr};

[[maybe_unused]] static CreatorFunc claimNothing(CDataSource*, float*, void**, FreeMetaFunc*) {
    return nullptr;
}

extern "C" {

CreatorFunc nobodyDefinesThis(CDataSource*, float*, void**, FreeMetaFunc*);

__attribute__((visibility("default"))) ExtractorDef PLUGIN_ENTRY() {
#if PLUGIN_VERSION == 2
    return {PLUGIN_VERSION, {{0, 0, 0, PLUGIN_UUID_BYTE}}, 7, PLUGIN_NAME, {{PLUGIN_SNIFFER}}};
#else
    ExtractorDef definition{
        PLUGIN_VERSION, {{0, 0, 0, PLUGIN_UUID_BYTE}}, 7, PLUGIN_NAME, {{nullptr}}};
    definition.u.v3 = {PLUGIN_SNIFFER, PLUGIN_TYPES};
    return definition;
#endif
}

}  // extern "C"

}  // namespace android
