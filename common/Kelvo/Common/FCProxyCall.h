// The one shape of a proxy operation: an argument object built by marshal functions, one remote
// call by method name, outputs read back by marshal functions, the reply's "ret" as the result.
// Every proxy writes its operations as one line over these: the method, then Writes(...) for each
// marshal function that fills the argument and Reads(...) for each that fills the caller's outputs.
#ifndef KELVO_FCPROXYCALL_H
#define KELVO_FCPROXYCALL_H

#include <string>
#include <tuple>

#include <json/json.h>

#include "FCCallHelper.h"
#include "FCJsonHelper.h"

namespace FCProxyCall {

// A marshal function with the caller's values, held by reference for the one call: Writes puts
// the values into the argument, Reads fills them from the reply.
template <bool kWrites, typename Marshal, typename... V>
struct Codec {
    Marshal marshal;
    std::tuple<V &...> values;
    void Write(Json::Value &argument) const
    {
        if constexpr (kWrites)
            std::apply([&](V &...v) { marshal(v..., argument); }, values);
    }
    void Read(Json::Value &reply) const
    {
        if constexpr (!kWrites)
            std::apply([&](V &...v) { marshal(reply, v...); }, values);
    }
};

template <typename Marshal, typename... V>
Codec<true, Marshal, V...> Writes(Marshal marshal, V &...values)
{
    return {marshal, std::tie(values...)};
}

template <typename Marshal, typename... V>
Codec<false, Marshal, V...> Reads(Marshal marshal, V &...outputs)
{
    return {marshal, std::tie(outputs...)};
}

// How a proxy's calls behave where the services differ: the JSON exchange it uses (the shared one,
// or one that reports under the proxy's own file and class), and whether a failed call still reads
// the outputs from its empty reply (some daemon callers expect outputs reset by a failure) or
// leaves them as the caller had them.
struct Site {
    bool (*jsonCall)(const char *method, const Json::Value &in, Json::Value &out);
    bool outputsOnFailure;
};

// The remote-content services: the shared exchange, outputs read also after a failure.
inline constexpr Site kShared{FCCallHelper::RemoteCallWithJsonArguments, true};
// As kShared, but a failed call leaves the outputs untouched.
inline constexpr Site kSharedOutputsOnSuccess{FCCallHelper::RemoteCallWithJsonArguments, false};

// The typed form of an operation. A failed call leaves the reply empty, except that a reply cut
// short keeps what jsoncpp read before the cut ({"ret":true,... would still say true); and a reply
// that is no object (a bare number, an array) cannot be indexed by name. Both are read as the
// empty reply.
template <typename... Codecs>
bool Typed(const Site &site, const char *method, const Codecs &...codecs)
{
    Json::Value argument(Json::objectValue);
    (codecs.Write(argument), ...);
    Json::Value reply;
    const bool called = site.jsonCall(method, argument, reply);
    if (!called && !site.outputsOnFailure)
        return false;
    if (!called || !reply.isObject())
        reply = Json::Value();
    (codecs.Read(reply), ...);
    return FCJsonHelper::ReturnBoolean(reply);
}

// The string form: the caller's text goes out unchanged and the reply text comes back to it.
inline bool String(const char *method, const std::string &in, std::string &out)
{
    FCCallHelper::RemoteCallWithStringArguments(method, in, out);
    return FCJsonHelper::ParseReturnBoolean(out);
}

// Notifications: false when the call itself fails, otherwise the reply's "ret".
inline bool Notify(const char *method, const std::string &in)
{
    std::string reply;
    if (!FCCallHelper::RemoteCallWithStringArguments(method, in, reply))
        return false;
    return FCJsonHelper::ParseReturnBoolean(reply);
}

// As Notify, and tells the caller whether the call itself went through, for services that report
// a failed call apart from a "ret" of false.
inline bool NotifyCalled(const char *method, const std::string &in, bool &called)
{
    std::string reply;
    called = FCCallHelper::RemoteCallWithStringArguments(method, in, reply);
    return called && FCJsonHelper::ParseReturnBoolean(reply);
}

// The daemon takes some flags of a request under "ret".
inline bool RetToJson(const bool &flag, Json::Value &out)
{
    out["ret"] = flag;
    return true;
}

}  // namespace FCProxyCall

#endif
