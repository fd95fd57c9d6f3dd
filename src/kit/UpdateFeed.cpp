#include "UpdateFeed.hpp"

#include <nlohmann/json.hpp>

#include <limits>

namespace vantrel {

namespace {

using nlohmann::json;

struct Malformed {};

const json* member(const json& object, const char* key) {
    const auto found = object.find(key);
    if (found == object.end() || found->is_null()) {
        return nullptr;
    }
    return &*found;
}

const json& required(const json& object, const char* key) {
    const json* value = member(object, key);
    if (value == nullptr) {
        throw Malformed{};
    }
    return *value;
}

std::string text(const json& value) {
    if (!value.is_string()) {
        throw Malformed{};
    }
    return value.get<std::string>();
}

std::optional<std::string> optionalText(const json& object, const char* key) {
    const json* value = member(object, key);
    if (value == nullptr) {
        return std::nullopt;
    }
    return text(*value);
}

std::int64_t integer(const json& value) {
    if (value.is_number_integer() && !value.is_number_unsigned()) {
        return value.get<std::int64_t>();
    }
    if (value.is_number_unsigned()) {
        const auto number = value.get<std::uint64_t>();
        if (number <= static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max())) {
            return static_cast<std::int64_t>(number);
        }
    }
    throw Malformed{};
}

UpdateFeed::Download decodeDownload(const json& value) {
    if (!value.is_object()) {
        throw Malformed{};
    }
    UpdateFeed::Download download;
    download.url = text(required(value, "url"));
    download.length = integer(required(value, "length"));
    download.edSignature = text(required(value, "edSignature"));
    return download;
}

} // namespace

std::optional<UpdateFeed> UpdateFeed::decode(std::string_view text) {
    const json value = json::parse(text, nullptr, false);
    if (value.is_discarded()) {
        return std::nullopt;
    }
    return fromJson(value);
}

std::optional<UpdateFeed> UpdateFeed::fromJson(const nlohmann::json& value) {
    if (!value.is_object()) {
        return std::nullopt;
    }
    try {
        UpdateFeed feed;
        feed.version = text(required(value, "version"));
        feed.url = text(required(value, "url"));
        feed.notes = optionalText(value, "notes");
        feed.minimumSystemVersion = optionalText(value, "minimumSystemVersion");
        if (const json* download = member(value, "download")) {
            feed.download = decodeDownload(*download);
        }
        return feed;
    } catch (const Malformed&) {
        return std::nullopt;
    }
}

nlohmann::json UpdateFeed::toJson() const {
    json value = {{"version", version}, {"url", url}};
    if (notes) {
        value["notes"] = *notes;
    }
    if (minimumSystemVersion) {
        value["minimumSystemVersion"] = *minimumSystemVersion;
    }
    if (download) {
        value["download"] = {{"url", download->url},
                             {"length", download->length},
                             {"edSignature", download->edSignature}};
    }
    return value;
}

} // namespace vantrel
