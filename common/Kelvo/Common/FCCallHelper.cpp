#include "FCCallHelper.h"

#include "FCDebug.h"
#include "FCJsonHelper.h"
#include "kelvo-dbus-proxy.h"

bool FCCallHelper::RemoteCallWithStringArguments(const char *method, const std::string &in, std::string &out)
{
    KelvoCallResult *result = Call(method, in.c_str());
    if (result == nullptr)
        return false;
    if (!result->success) {
        // Every proxy reports under this one class name; log readers search for it.
        FC_LOGE("%s: %s(%d) > DBG_LV[%d][FCVirtualChannels_Proxy::%s] fail to communicate using d-bus\n", FC_DBG_LV,
                method);
        DisposeCallResult(result);
        return false;
    }
    if (result->data != nullptr)
        out.assign(result->data, result->length);
    else
        out.clear();
    DisposeCallResult(result);
    return true;
}

bool FCCallHelper::RemoteCallWithJsonArguments(const char *method, const Json::Value &in, Json::Value &out)
{
    return RemoteCallWithJsonArguments(method, in, out, nullptr, nullptr);
}

bool FCCallHelper::RemoteCallWithJsonArguments(const char *method, const Json::Value &in, Json::Value &out,
                                               const char *arrayKey,
                                               const std::function<void(const Json::Value &element)> &onElement)
{
    std::string reply;
    if (!RemoteCallWithStringArguments(method, FCJsonHelper::WriteCompact(in), reply))
        return false;
    bool parsed = arrayKey == nullptr ? FCJsonHelper::ParseToJson(reply, out)
                                      : FCJsonHelper::ParseToJsonEach(reply, arrayKey, out, onElement);
    if (!parsed) {
        FC_LOGE("%s: %s(%d) > DBG_LV[%d][FCVirtualChannels_Proxy::%s] fail to parse json data\n", FC_DBG_LV, method);
        return false;
    }
    return true;
}
