// SPDX-License-Identifier: Apache-2.0
#include "tools/avitool/JsonValues.h"

#include <fmt/format.h>

#include <cstdlib>
#include <variant>

#include "tools/avitool/Text.h"

namespace avitool {

namespace service = android::service;

namespace {

template <typename T>
Json valueJson(const T& value) {
    return {{"value", value}};
}

Json valueJson(float value) {
    return {{"value", shortest(value)}};
}

Json valueJson(const service::FormatRect& value) {
    return {{"value", {value.left, value.top, value.right, value.bottom}}};
}

Json valueJson(const std::vector<uint8_t>& value) {
    return {{"size", value.size()}, {"hex", hex(value)}};
}

}  // namespace

double shortest(float value) {
    return std::strtod(fmt::format("{}", value).c_str(), nullptr);
}

Json toJson(const FormatEntries& entries) {
    Json object = Json::object();
    for (const auto& entry : entries) {
        Json& member = object[entry.name];
        member["type"] = entry.typeName();
        member.update(std::visit([](const auto& value) { return valueJson(value); }, entry.value));
    }
    return object;
}

Json toJson(const Failure& failure) {
    Json object = {{"what", failure.what}};
    if (failure.status) {
        object["status"] = statusName(*failure.status);
        object["code"] = static_cast<int>(*failure.status);
    }
    return object;
}

Json toJson(const SampleReport& sample) {
    Json object = {{"index", sample.index}, {"timeUs", nullptr}};
    if (sample.timeUs) object["timeUs"] = *sample.timeUs;
    object["sync"] = sample.sync;
    object["size"] = sample.size;
    object["crc32"] = fmt::format("{:08x}", sample.crc32);
    return object;
}

std::string dump(const Json& value, int indent) {
    return jsonWithoutControls(value.dump(indent, ' ', false, Json::error_handler_t::replace));
}

}  // namespace avitool
