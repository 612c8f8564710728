#include "FCThumbnailManager_Proxy.h"

#include "FCMarshal.h"
#include "FCProxyCall.h"

namespace {

using FCProxyCall::Reads;
using FCProxyCall::Writes;

constexpr FCProxyCall::TypedOver<FCProxyCall::kSharedOutputsOnSuccess> TypedCall;

// The item operations answer the daemon's "ret" as a number (the download identifier), which a
// failed call leaves at 0.
template <typename... Codecs>
int ItemCall(const char *method, const Codecs &...codecs)
{
    int ret = 0;
    bool (*const readInt)(const Json::Value &, int &) = FCMarshal::JsonToInt;
    TypedCall(method, codecs..., Reads(readInt, ret));
    return ret;
}

}  // namespace

FCThumbnailManager_Proxy::~FCThumbnailManager_Proxy() {}

int FCThumbnailManager_Proxy::RegisterDownloadItem(const std::string &url, const EDownloadLocation &location,
                                                   std::string &file)
{
    return ItemCall("RegisterDownloadItem", Writes(FCMarshal::UrlToJson, url),
                    Writes(FCMarshal::EDownloadLocationToJson, location), Writes(FCMarshal::FileToJson, file),
                    Reads(FCMarshal::JsonToFile, file));
}

bool FCThumbnailManager_Proxy::UnregisterDownloadItem(const int &id)
{
    return TypedCall("UnregisterDownloadItemById", Writes(FCMarshal::IdToJson, id));
}

bool FCThumbnailManager_Proxy::UnregisterDownloadItem(const std::string &url)
{
    return TypedCall("UnregisterDownloadItemByUrl", Writes(FCMarshal::UrlToJson, url));
}

int FCThumbnailManager_Proxy::GetDownloadedItem(const int &id, std::string &file)
{
    return ItemCall("GetDownloadedItemById", Writes(FCMarshal::IdToJson, id), Reads(FCMarshal::JsonToFile, file));
}

int FCThumbnailManager_Proxy::GetDownloadedItem(const std::string &url, std::string &file)
{
    return ItemCall("GetDownloadedItemByUrl", Writes(FCMarshal::UrlToJson, url), Reads(FCMarshal::JsonToFile, file));
}

bool FCThumbnailManager_Proxy::DeleteAllImage(const EDownloadLocation &location)
{
    return TypedCall("DeleteAllImage", Writes(FCMarshal::EDownloadLocationToJson, location));
}
