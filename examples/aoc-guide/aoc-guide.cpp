// The set's app-on-channel services with their package ids and programme guide: the services
// come from the TVS middleware, the guide that their applications published from the content
// daemon, both through the provider client.
//
//   aoc-guide [--hours N] [--now UTC-SECONDS]
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <list>
#include <map>
#include <string>

#include "FCAocDataUtil.h"
#include "FCAocProgramInfoAPI.h"
#include "FenvoraDefine.h"
#include "TVServiceAPI.h"

namespace {

std::string Clock(unsigned int utc)
{
    time_t t = utc;
    struct tm tm {};
    gmtime_r(&t, &tm);
    char text[8];
    strftime(text, sizeof text, "%H:%M", &tm);
    return text;
}

// Every service id of the set, in the middleware's order.
std::list<unsigned long long> ServiceIds()
{
    std::list<unsigned long long> ids;
    IService *service = TVServiceAPI::CreateService();
    if (service == nullptr)
        return ids;
    TCCriteriaHelper criteria;
    criteria.Fetch(12);
    std::list<TCServiceData *> found;
    service->FindServiceList(criteria, found);
    for (TCServiceData *data : found) {
        if (data != nullptr)
            ids.push_back(static_cast<unsigned long long>(data->Get(12)));
        delete data;
    }
    TVServiceAPI::Destroy(service);
    return ids;
}

}  // namespace

int main(int argc, char **argv)
{
    unsigned int hours = 3;
    unsigned int now = static_cast<unsigned int>(time(nullptr));
    for (int i = 1; i + 1 < argc; i += 2) {
        if (strcmp(argv[i], "--hours") == 0)
            hours = static_cast<unsigned int>(strtoul(argv[i + 1], nullptr, 10));
        else if (strcmp(argv[i], "--now") == 0)
            now = static_cast<unsigned int>(strtoul(argv[i + 1], nullptr, 10));
    }
    FCAocProgramInfoAPI *guide = FCAPI::GetAocProgramInfoAPI();
    const std::list<unsigned long long> ids = ServiceIds();
    int shown = 0;
    for (unsigned long long id : ids) {
        if (!FCAocDataHelper::IsAocType(id))
            continue;
        ++shown;
        FCAocExtraData extra;
        std::string packageId;
        FCAocDataHelper::GetPackageIdExtraData(extra, id, packageId);
        printf("%llu  %s  channel %s  data \"%s\"\n", id, packageId.c_str(), extra.m_channelId.c_str(),
               FCAocDataHelper::GetRealDataFromAocExtraData(extra, packageId, "").c_str());
        FCAocProgramData present;
        if (guide->GetPresentProgramInfo(id, present))
            printf("  now   %s-%s  %s\n", Clock(present.m_startTime).c_str(),
                   Clock(present.m_startTime + present.m_duration).c_str(), present.m_title.c_str());
        std::map<unsigned int, FCAocProgramData> programs;
        if (!guide->GetProgramInfoList(id, now, hours * 3600, programs)) {
            printf("  no programmes in the next %u h\n", hours);
            continue;
        }
        for (const auto &entry : programs)
            printf("  %s  %3u min  %s\n", Clock(entry.first).c_str(), entry.second.m_duration / 60,
                   entry.second.m_title.c_str());
    }
    printf("%d app-on-channel services among %zu\n", shown, ids.size());
    return shown > 0 ? 0 : 1;
}
