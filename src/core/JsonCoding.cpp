#include "JsonCoding.hpp"

#include <cmath>
#include <limits>

namespace scrimlet::json {

namespace {

[[noreturn]] void fail(std::string_view what) {
    throw DecodeError(std::string(what));
}

nlohmann::json sortedCopy(const Json& value) {
    switch (value.type()) {
    case Json::value_t::object: {
        nlohmann::json out = nlohmann::json::object();
        for (const auto& [key, item] : value.items()) {
            out[key] = sortedCopy(item);
        }
        return out;
    }
    case Json::value_t::array: {
        nlohmann::json out = nlohmann::json::array();
        for (const auto& item : value) {
            out.push_back(sortedCopy(item));
        }
        return out;
    }
    case Json::value_t::string:
        return value.get<std::string>();
    case Json::value_t::boolean:
        return value.get<bool>();
    case Json::value_t::number_integer:
        return value.get<std::int64_t>();
    case Json::value_t::number_unsigned:
        return value.get<std::uint64_t>();
    case Json::value_t::number_float:
        return value.get<double>();
    default:
        return nullptr;
    }
}

} // namespace

const Json& field(const Json& object, std::string_view key) {
    if (!object.is_object()) {
        fail("expected an object");
    }
    const auto found = object.find(key);
    if (found == object.end()) {
        fail("missing key " + std::string(key));
    }
    return *found;
}

const Json* optionalField(const Json& object, std::string_view key) {
    if (!object.is_object()) {
        fail("expected an object");
    }
    const auto found = object.find(key);
    if (found == object.end() || found->is_null()) {
        return nullptr;
    }
    return &*found;
}

bool decodeBool(const Json& value) {
    if (!value.is_boolean()) {
        fail("expected a boolean");
    }
    return value.get<bool>();
}

double decodeDouble(const Json& value) {
    if (!value.is_number()) {
        fail("expected a number");
    }
    return value.get<double>();
}

std::int64_t decodeInteger(const Json& value) {
    if (value.is_number_unsigned()) {
        const auto n = value.get<std::uint64_t>();
        if (n > static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max())) {
            fail("integer out of range");
        }
        return static_cast<std::int64_t>(n);
    }
    if (value.is_number_integer()) {
        return value.get<std::int64_t>();
    }
    if (value.is_number_float()) {
        // A whole number written with a fraction part ("3.0") is still a whole number.
        const double d = value.get<double>();
        if (std::isfinite(d) && std::floor(d) == d && std::fabs(d) < 9.0e15) {
            return static_cast<std::int64_t>(d);
        }
    }
    fail("expected a whole number");
}

std::int32_t decodeInt32(const Json& value) {
    const std::int64_t n = decodeInteger(value);
    if (n < std::numeric_limits<std::int32_t>::min() ||
        n > std::numeric_limits<std::int32_t>::max()) {
        fail("integer out of range");
    }
    return static_cast<std::int32_t>(n);
}

std::uint32_t decodeUInt32(const Json& value) {
    const std::int64_t n = decodeInteger(value);
    if (n < 0 || n > std::numeric_limits<std::uint32_t>::max()) {
        fail("integer out of range");
    }
    return static_cast<std::uint32_t>(n);
}

std::string decodeString(const Json& value) {
    if (!value.is_string()) {
        fail("expected a string");
    }
    return value.get<std::string>();
}

Date decodeDate(const Json& value) {
    const auto date = Date::parseIso8601(decodeString(value));
    if (!date) {
        fail("expected an ISO 8601 date");
    }
    return *date;
}

Uuid decodeUuid(const Json& value) {
    const auto uuid = Uuid::parse(decodeString(value));
    if (!uuid) {
        fail("expected a UUID");
    }
    return *uuid;
}

Json encodeDate(Date date) {
    return date.iso8601();
}

Json encodeUuid(const Uuid& uuid) {
    return uuid.string();
}

Json encodeCase(std::string_view name) {
    Json out = Json::object();
    out[std::string(name)] = Json::object();
    return out;
}

Json encodeCase(std::string_view name, Json payload) {
    Json inner = Json::object();
    inner["_0"] = std::move(payload);
    Json out = Json::object();
    out[std::string(name)] = std::move(inner);
    return out;
}

std::pair<std::string, const Json*> decodeCase(const Json& value) {
    if (!value.is_object() || value.size() != 1) {
        fail("expected an object with exactly one key");
    }
    const auto item = value.begin();
    if (!item->is_object()) {
        fail("expected an object as the case's value");
    }
    return {item.key(), &*item};
}

const Json& casePayload(const Json& caseObject) {
    return field(caseObject, "_0");
}

std::optional<Json> parse(std::string_view text) {
    Json value = Json::parse(text, nullptr, false);
    if (value.is_discarded()) {
        return std::nullopt;
    }
    return value;
}

// Text that is not valid UTF-8 is written with replacement characters rather than thrown.
std::string sortedText(const Json& value) {
    return sortedCopy(value).dump(2, ' ', false, nlohmann::json::error_handler_t::replace);
}

std::string orderedText(const Json& value) {
    return value.dump(2, ' ', false, Json::error_handler_t::replace);
}

} // namespace scrimlet::json
