// Reading the daemon's JSON into the virtual-channel records without ever raising: a reply may
// hold any value under any key, and jsoncpp raises on indexing a value that is not an object or
// on converting one of the wrong type. A missing member or one of another type reads as the
// empty value of its kind. Only the records' own sources include this.
#ifndef KELVO_FCRECORDJSON_H
#define KELVO_FCRECORDJSON_H

#include <cstdlib>
#include <cstring>
#include <string>

#include <json/json.h>

namespace FCRecordJson {

// The member key of in, or null when in is not an object or has no such member.
inline const Json::Value &Member(const Json::Value &in, const char *key)
{
    if (!in.isObject())
        return Json::Value::nullSingleton();
    const Json::Value *member = in.find(key, key + std::strlen(key));
    return member != nullptr ? *member : Json::Value::nullSingleton();
}

// Text as jsoncpp converts it (numbers and flags become their text); "" for arrays and objects.
inline std::string Text(const Json::Value &value)
{
    if (value.isString() || value.isConvertibleTo(Json::stringValue))
        return value.asString();
    return std::string();
}

inline unsigned int Unsigned(const Json::Value &value)
{
    return value.isConvertibleTo(Json::uintValue) ? value.asUInt() : 0U;
}

inline int Signed(const Json::Value &value)
{
    return value.isConvertibleTo(Json::intValue) ? value.asInt() : 0;
}

// A number the server sends either as a number or as text: text converts with base 0 (so
// "0x1F", "017" and "31" are all 31; text that is no number is 0).
inline unsigned int UnsignedOrText(const Json::Value &value)
{
    if (value.isString())
        return static_cast<unsigned int>(std::strtoul(value.asCString(), nullptr, 0));
    return Unsigned(value);
}

inline int SignedOrText(const Json::Value &value)
{
    if (value.isString())
        return static_cast<int>(std::strtol(value.asCString(), nullptr, 0));
    return Signed(value);
}

// A service id as decimal text; 0 when absent.
inline unsigned long long ServiceId(const Json::Value &value)
{
    return value.isNull() ? 0ULL : std::strtoull(Text(value).c_str(), nullptr, 10);
}

}  // namespace FCRecordJson

#endif
