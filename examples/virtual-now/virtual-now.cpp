// virtual-now: the TV's virtual channels and, for each, the programme it plays now, with the
// playlist item playing and how far into it playback stands, as a player joining the channel
// would start. The channels come from the TV's services; their programmes from the content daemon.
#include <cstdio>
#include <ctime>
#include <list>
#include <string>

#include <FCServiceIdUtil.h>
#include <FCVirtualChannelsAPI.h>
#include <FenvoraDefine.h>
#include <TVServiceAPI.h>

namespace {

// Fields of the TVS middleware's service records.
const int kServiceIdField = 12;
const int kMajorField = 13;
const int kMinorField = 14;
const int kChannelMapField = 17;

// The stream kind a content's type names.
EStreamType StreamTypeOf(const std::string &type)
{
    if (type == "RTS")
        return STREAM_TYPE_RTS;
    if (type == "VOD")
        return STREAM_TYPE_VOD;
    if (type == "LIVE")
        return STREAM_TYPE_LIVE;
    if (type == "CIRCLE")
        return STREAM_TYPE_CIRCLE;
    if (type == "OWN")
        return STREAM_TYPE_OWN;
    return STREAM_TYPE_UNKNOWN;
}

std::string Clock(unsigned long seconds)
{
    time_t t = static_cast<time_t>(seconds);
    struct tm tm = {};
    gmtime_r(&t, &tm);
    char text[16];
    strftime(text, sizeof text, "%H:%M:%S", &tm);
    return text;
}

void PrintProgramme(unsigned long long serviceId, long long major, long long minor, FCVirtualProgramData &programme,
                    unsigned long now)
{
    const std::string type = programme.GetContentType();
    std::printf("%d-%d  %llu\n", static_cast<int>(major), static_cast<int>(minor), serviceId);
    std::printf("    %s-%s UTC  \"%s\"  (%s, event %s)\n", Clock(programme.GetStartTime()).c_str(),
                Clock(programme.GetStartTime() + programme.FCTvlumeSchedule::GetDuration()).c_str(),
                programme.GetTitle().c_str(), type.c_str(), programme.GetEventId().c_str());
    if (!programme.UpdateOffsetAndPlaylistIndex(now, StreamTypeOf(type))) {
        std::printf("    no playback position for a stream of type \"%s\"\n", type.c_str());
        return;
    }
    const int index = programme.GetPlaylistItemIndex();
    FCTvlumePlaylistItem item;
    if (index >= 0 && programme.GetPlaylistItem(index, item)) {
        std::printf("    playlist item index %d of %zu: \"%s\", offset %d s of %u s\n", index,
                    programme.GetPlaylist().size(), item.GetTitle().c_str(), programme.GetRelativeOffset(),
                    item.GetDuration());
    } else {
        std::printf("    one stream: playlist item index %d, offset %d s\n", index, programme.GetRelativeOffset());
    }
}

}  // namespace

int main()
{
    IService *services = TVServiceAPI::CreateService();
    if (services == nullptr) {
        std::fprintf(stderr, "virtual-now: the TV's services cannot be read\n");
        return 1;
    }
    TCCriteriaHelper criteria;
    criteria.WhereNot(kChannelMapField, -1);
    criteria.Fetch(kServiceIdField);
    criteria.Fetch(kMajorField);
    criteria.Fetch(kMinorField);
    std::list<TCServiceData *> found;
    services->FindServiceList(criteria, found);
    TVServiceAPI::Destroy(services);

    FCAPI::Initialize();
    FCVirtualChannelsAPI *channels = FCAPI::GetVirtualChannelsAPI();
    const unsigned long now = static_cast<unsigned long>(time(nullptr));
    std::printf("now: %s UTC (%lu)\n", Clock(now).c_str(), now);
    int virtualChannels = 0, playing = 0;
    for (TCServiceData *service : found) {
        const unsigned long long id = static_cast<unsigned long long>(service->Get(kServiceIdField));
        if (FCServiceIdUtil::IsVirtualChannel(id)) {
            ++virtualChannels;
            FCVirtualProgramData programme;
            if (channels->GetPresentProgram(id, programme)) {
                ++playing;
                PrintProgramme(id, service->Get(kMajorField), service->Has(kMinorField) ? service->Get(kMinorField) : 0,
                               programme, now);
            }
        }
        delete service;
    }
    std::printf("%d virtual channels in the channel map, %d of them playing now\n", virtualChannels, playing);
    FCAPI::Finalize();
    return 0;
}
