// SPDX-License-Identifier: Apache-2.0
#include "tools/avitool/JsonValues.h"
#include "tools/avitool/SeekPrinter.h"

namespace avitool {

namespace {

template <typename T>
Json orNull(const std::optional<T>& value) {
    return value ? Json(*value) : Json(nullptr);
}

Json toJson(const Landing& landing) {
    constexpr double kUsPerMs = 1000;
    Json object = {{"track", landing.track}, {"mime", landing.mime}};
    object["endOfStream"] = landing.endOfStream;
    object["timeUs"] = landing.sample ? orNull(landing.sample->timeUs) : Json(nullptr);
    object["sync"] = landing.sample ? Json(landing.sample->sync) : Json(nullptr);
    object["size"] = landing.sample ? Json(landing.sample->size) : Json(nullptr);
    object["targetTimeUs"] = orNull(landing.targetUs);
    object["fromVideoMs"] = landing.differenceUs
                                ? Json(static_cast<double>(*landing.differenceUs) / kUsPerMs)
                                : Json(nullptr);
    object["reads"] = landing.reads;
    if (landing.failure) object["error"] = avitool::toJson(*landing.failure);
    return object;
}

}  // namespace

void printSeekJson(const SeekReport& report, Console& console) {
    Json object = {{"file", report.path}, {"atUs", report.atUs}, {"mode", modeName(report.mode)}};
    object["tracks"] = Json::array();
    for (const Landing& landing : report.landings)
        object["tracks"].push_back(toJson(landing));
    if (report.error) object["error"] = *report.error;
    console.write(dump(object, 2) + "\n");
    console.flush();
}

}  // namespace avitool
