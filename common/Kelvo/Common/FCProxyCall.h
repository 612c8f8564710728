// The one shape of a proxy operation: an argument object built by marshal functions, one remote
// call by method name, outputs read back by marshal functions, the reply's "ret" as the result.
// Every proxy writes its operations as one line over these: the method, then Writes(...) for each
// marshal function that fills the argument and Reads(...) for each that fills the caller's outputs.
#ifndef KELVO_FCPROXYCALL_H
#define KELVO_FCPROXYCALL_H

#include <string>
#include <tuple>
#include <utility>

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
    // The text exchange and the reading of a text reply's "ret", for the forms over a site.
    bool (*stringCall)(const char *method, const std::string &in,
                       std::string &out) = FCCallHelper::RemoteCallWithStringArguments;
    bool (*parseReturn)(std::string &text) = FCJsonHelper::ParseReturnBoolean;
};

// The call functions of a proxy that reports failures under its own source file and class, and
// its site: a failed call leaves the outputs untouched, a reply that does not parse reads as empty.
// A proxy names its origin once: constexpr FCCallHelper::Origin kOrigin{__FILE__, __LINE__, "Class"}.
template <const FCCallHelper::Origin &kOrigin>
struct OwnCalls {
    static bool RemoteCallWithStringArguments(const char *method, const std::string &in, std::string &out)
    {
        return FCCallHelper::RemoteCallWithStringArguments(kOrigin, method, in, out);
    }
    static bool RemoteCallWithJsonArguments(const char *method, const Json::Value &in, Json::Value &out)
    {
        return FCCallHelper::RemoteCallWithJsonArguments(kOrigin, method, in, out);
    }
    static bool ParseReturnValue(std::string &text) { return FCCallHelper::ParseReturnValue(kOrigin, text); }
};

template <const FCCallHelper::Origin &kOrigin>
inline constexpr Site kOwnSite{OwnCalls<kOrigin>::RemoteCallWithJsonArguments, false,
                               OwnCalls<kOrigin>::RemoteCallWithStringArguments, OwnCalls<kOrigin>::ParseReturnValue};

// The remote-content services: the shared exchange, outputs read also after a failure.
inline constexpr Site kShared{FCCallHelper::RemoteCallWithJsonArguments, true};
// As kShared, but a failed call leaves the outputs untouched.
inline constexpr Site kSharedOutputsOnSuccess{FCCallHelper::RemoteCallWithJsonArguments, false};

// The typed form of an operation. A failed call leaves the reply empty, except that a reply cut
// short keeps what jsoncpp read before the cut ({"ret":true,... would still say true); and a reply
// that is no object (a bare number, an array) cannot be indexed by name. Both are read as the
// empty reply.
//
// What the operation answers is told by `answer(called, reply)`: ReplyRet below for the usual
// "ret", or another convention (call success, a number of the reply).
template <typename Answer, typename... Codecs>
auto TypedAs(const Site &site, const Answer &answer, const char *method, const Codecs &...codecs)
{
    Json::Value argument(Json::objectValue);
    (codecs.Write(argument), ...);
    Json::Value reply;
    const bool called = site.jsonCall(method, argument, reply);
    if (!called || !reply.isObject())
        reply = Json::Value();
    if (called || site.outputsOnFailure)
        (codecs.Read(reply), ...);
    return answer(called, reply);
}

// The usual answer: the reply's "ret", false when the call failed.
inline bool ReplyRet(bool called, const Json::Value &reply)
{
    return called && FCJsonHelper::ReturnBoolean(reply);
}

// Operations whose daemon answers nothing of use: whether the call went through.
inline bool CallSucceeded(bool called, const Json::Value &)
{
    return called;
}

template <typename... Codecs>
bool Typed(const Site &site, const char *method, const Codecs &...codecs)
{
    return TypedAs(site, ReplyRet, method, codecs...);
}

// Typed over one site, bound once in a proxy file whose operations share it:
//   constexpr FCProxyCall::TypedOver<FCProxyCall::kShared> TypedCall;
template <const Site &kSite>
struct TypedOver {
    template <typename... Codecs>
    bool operator()(const char *method, const Codecs &...codecs) const
    {
        return Typed(kSite, method, codecs...);
    }
};

// An output read from a reply's bulk array one element at a time, into a map: each element is
// read into a fresh map, which goes into the caller's map (as the whole-reply reader would have
// put it) only when the whole reply parsed.
template <typename Map>
struct Each {
    const char *arrayKey;
    void (*readElement)(const Json::Value &element, Map &entries);
    Map &output;
};

template <typename Map>
Each<Map> ReadsEach(const char *arrayKey, void (*readElement)(const Json::Value &, Map &), Map &output)
{
    return {arrayKey, readElement, output};
}

// Typed with the shared exchange, for the operations whose reply may hold a whole day's
// programmes: the reply never stands in memory as one JSON tree, and the outcome is Typed's.
template <typename Map, typename... Codecs>
bool TypedEach(const char *method, const Each<Map> &each, const Codecs &...writes)
{
    Json::Value argument(Json::objectValue);
    (writes.Write(argument), ...);
    Json::Value reply;
    Map fresh;
    if (!FCCallHelper::RemoteCallWithJsonArguments(
            method, argument, reply, each.arrayKey,
            [&](const Json::Value &element) { each.readElement(element, fresh); }) ||
        !reply.isObject())
        return false;
    for (auto &entry : fresh)
        each.output[entry.first] = std::move(entry.second);
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

// The string form over a site: the caller's text goes out unchanged and the reply text comes back
// to it; false when the call fails, else the reply's "ret".
inline bool Text(const Site &site, const char *method, const std::string &in, std::string &out)
{
    if (!site.stringCall(method, in, out))
        return false;
    return site.parseReturn(out);
}

// Operations without argument: the empty text goes out and the reply's "ret" is the answer. A
// failed call leaves the empty reply, which does not parse.
inline bool Argumentless(const Site &site, const char *method)
{
    std::string reply;
    site.stringCall(method, std::string(), reply);
    return site.parseReturn(reply);
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
