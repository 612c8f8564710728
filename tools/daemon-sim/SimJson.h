// Reading requests and the fixture without trusting their kind, for every handler of the
// simulated daemon.
#ifndef KELVO_SIM_JSON_H
#define KELVO_SIM_JSON_H

#include <cstdlib>
#include <string>

#include <json/json.h>

namespace SimJson {

// Members read from requests and the fixture without trusting their kind: a request of the
// wrong shape gets a "ret": false answer or an empty result, never a crash.
inline std::string Str(const Json::Value &object, const char *key)
{
    if (!object.isObject() || !object.isMember(key))
        return "";
    const Json::Value &v = object[key];
    if (v.isString())
        return v.asString();
    if (v.isUInt64())
        return std::to_string(v.asUInt64());
    if (v.isInt64())
        return std::to_string(v.asInt64());
    return "";
}

inline long long Num(const Json::Value &object, const char *key, long long fallback = 0)
{
    if (!object.isObject() || !object.isMember(key))
        return fallback;
    const Json::Value &v = object[key];
    if (v.isInt64())
        return v.asInt64();
    if (v.isUInt64())
        return static_cast<long long>(v.asUInt64());
    if (v.isString()) {
        const std::string s = v.asString();
        char *end = nullptr;
        long long n = strtoll(s.c_str(), &end, 10);
        if (!s.empty() && end && *end == '\0')
            return n;
    }
    return fallback;
}

inline const Json::Value &Member(const Json::Value &object, const char *key)
{
    static const Json::Value null;
    if (!object.isObject() || !object.isMember(key))
        return null;
    return object[key];
}

// Copies every member of a record object to the top level of a reply, where the record readers
// of the client look for a single channel or programme.
inline void MergeInto(const Json::Value &record, Json::Value &out)
{
    if (!record.isObject())
        return;
    for (const auto &key : record.getMemberNames())
        out[key] = record[key];
}

inline unsigned long long StartOf(const Json::Value &programme)
{
    long long start = Num(programme, "utc start time");
    return start < 0 ? 0 : static_cast<unsigned long long>(start);
}

inline long long DurationOf(const Json::Value &programme)
{
    return Num(programme, "duration");
}

}  // namespace SimJson

#endif
