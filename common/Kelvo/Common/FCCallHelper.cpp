#include "FCCallHelper.h"

#include <cstring>

#include <memory>
#include <string_view>

#include "FCDebug.h"
#include "FCJsonHelper.h"
#include "kelvo-dbus-proxy.h"

namespace {

// Every proxy but those with an origin of their own reports under this one class name; log
// readers search for it.
FCCallHelper::Origin Shared(int line)
{
    return {__FILE__, line, "FCVirtualChannels_Proxy"};
}

const char *FileName(const char *path)
{
    const char *slash = strrchr(path, '/');
    return slash ? slash + 1 : path;
}

// The shared log line, with the origin's file, line and class and the calling function's name.
#define FC_ORIGIN_LOGE(origin, function, text, ...)                                                                    \
    dlog_print(DLOG_ERROR, FC_LOG_TAG, "%s: %s(%d) > DBG_LV[%d][%s::%s] " text "\n", FileName((origin).file),          \
               function, (origin).line, FC_DBG_LV, (origin).className, ##__VA_ARGS__)

struct ResultDisposer {
    void operator()(KelvoCallResult *result) const { DisposeCallResult(result); }
};
using CallResult = std::unique_ptr<KelvoCallResult, ResultDisposer>;

// The daemon's reply as the platform hands it over; null, reported under the origin, when the
// call failed.
CallResult Reply(const FCCallHelper::Origin &origin, const char *method, const std::string &in)
{
    CallResult result(Call(method, in.c_str()));
    if (result && !result->success) {
        FC_ORIGIN_LOGE(origin, "RemoteCallWithStringArguments", "fail to communicate using d-bus", method);
        result.reset();
    }
    return result;
}

std::string_view TextOf(const KelvoCallResult &result)
{
    return result.data != nullptr ? std::string_view(result.data, result.length) : std::string_view();
}

// The JSON exchange: the argument as compact text, the reply parsed. Whether a reply that does not
// parse fails the call is the caller's choice; where it does not, the reply is left null.
// With an arrayKey, the reply's bulk array goes to onElement one element at a time
// (FCJsonHelper::ParseToJsonEach).
bool JsonCall(const FCCallHelper::Origin &origin, const char *method, const Json::Value &in, Json::Value &out,
              bool unparsableFails, const char *arrayKey = nullptr,
              const std::function<void(const Json::Value &element)> *onElement = nullptr)
{
    // Parsed where the platform left it: a day's programme map is tens of megabytes, and a copy
    // of it would stand beside the original.
    const CallResult result = Reply(origin, method, FCJsonHelper::WriteCompact(in));
    if (!result)
        return false;
    const std::string_view reply = TextOf(*result);
    const bool parsed = arrayKey == nullptr ? FCJsonHelper::ParseToJson(reply, out)
                                            : FCJsonHelper::ParseToJsonEach(reply, arrayKey, out, *onElement);
    if (parsed)
        return true;
    if (!unparsableFails) {
        out = Json::Value();
        return true;
    }
    FC_ORIGIN_LOGE(origin, "RemoteCallWithJsonArguments", "fail to parse json data", method);
    return false;
}

}  // namespace

bool FCCallHelper::RemoteCallWithStringArguments(const char *method, const std::string &in, std::string &out)
{
    return RemoteCallWithStringArguments(Shared(__LINE__), method, in, out);
}

bool FCCallHelper::RemoteCallWithJsonArguments(const char *method, const Json::Value &in, Json::Value &out)
{
    return JsonCall(Shared(__LINE__), method, in, out, true);
}

bool FCCallHelper::RemoteCallWithJsonArguments(const char *method, const Json::Value &in, Json::Value &out,
                                               const char *arrayKey,
                                               const std::function<void(const Json::Value &element)> &onElement)
{
    return JsonCall(Shared(__LINE__), method, in, out, true, arrayKey, &onElement);
}

bool FCCallHelper::RemoteCallWithStringArguments(const Origin &origin, const char *method, const std::string &in,
                                                 std::string &out)
{
    const CallResult result = Reply(origin, method, in);
    if (!result)
        return false;
    out.assign(TextOf(*result));
    return true;
}

bool FCCallHelper::RemoteCallWithJsonArguments(const Origin &origin, const char *method, const Json::Value &in,
                                               Json::Value &out)
{
    return JsonCall(origin, method, in, out, false);
}

bool FCCallHelper::ParseReturnValue(const Origin &origin, std::string &text)
{
    Json::Value reply;
    if (!FCJsonHelper::ParseToJson(text, reply)) {
        FC_ORIGIN_LOGE(origin, __func__, "fail to parse json output data", __func__);
        return false;
    }
    return FCJsonHelper::ReturnBoolean(reply);
}
