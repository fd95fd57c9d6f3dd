#pragma once

// The JSON conventions of every file the program writes: field names as keys, an
// enumeration with payload as {"case":{"_0":payload}} or {"case":{}}, dates as ISO 8601 in
// UTC with whole seconds, UUIDs in upper case. Decoding is strict and reports a fault by
// throwing `DecodeError`; the file readers catch it and fall back as each file allows.

#include "Date.hpp"
#include "Uuid.hpp"

#include <nlohmann/json.hpp>

#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

namespace scrimlet::json {

/// Objects keep their keys in insertion order, that is in field order; `sortedText` sorts.
using Json = nlohmann::ordered_json;

struct DecodeError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// The value under `key`; throws when `object` is not an object or lacks the key.
const Json& field(const Json& object, std::string_view key);
/// The value under `key`, or null when the key is missing or holds null (an absent optional).
const Json* optionalField(const Json& object, std::string_view key);

bool decodeBool(const Json& value);
double decodeDouble(const Json& value);
std::int64_t decodeInteger(const Json& value);
std::int32_t decodeInt32(const Json& value);
std::uint32_t decodeUInt32(const Json& value);
std::string decodeString(const Json& value);
Date decodeDate(const Json& value);
Uuid decodeUuid(const Json& value);
Json encodeDate(Date date);
Json encodeUuid(const Uuid& uuid);

/// {"name":{}} for a case without payload, {"name":{"_0":payload}} for one with.
Json encodeCase(std::string_view name);
Json encodeCase(std::string_view name, Json payload);
/// The case name of an enumeration with payload and the object that holds its payload;
/// throws unless `value` is an object of exactly one key whose value is an object.
std::pair<std::string, const Json*> decodeCase(const Json& value);
/// The payload under "_0" of a case's object.
const Json& casePayload(const Json& caseObject);

/// Parses without throwing; nothing for text that is not JSON.
std::optional<Json> parse(std::string_view text);
/// Pretty printed (two-space indent) with every object's keys sorted.
std::string sortedText(const Json& value);
/// Pretty printed with keys in the order they were inserted.
std::string orderedText(const Json& value);

} // namespace scrimlet::json
