// The TV simulator's service and guide interfaces over the state of TVServiceDataStore.h (the tag
// numbers and what a missing tag means are told there).
#include <memory>

#include "TVServiceAPI.h"
#include "TVServiceDataStore.h"
#include "tzplatform_config.h"

namespace {
bool PathUnder(tzplatform_variable variable, const char *name, std::string &out)
{
    const char *base = tzplatform_getenv(variable);
    if (base == nullptr) {
        TCApiPrintMessage("[TVS] platform folder %d is not set", static_cast<int>(variable));
        return false;
    }
    out = std::string(base) + "/" + name;
    return true;
}

bool Satisfies(const TCStoredService &service, const TCCriteriaHelper::Condition &condition)
{
    auto it = service.tags.find(condition.field);
    bool equal = it != service.tags.end() && it->second == condition.value;
    return condition.negated ? !equal : equal;
}

bool SatisfiesAll(const TCStoredService &service, const TCCriteriaHelper &criteria)
{
    for (const auto &condition : criteria.Conditions())
        if (!Satisfies(service, condition))
            return false;
    return true;
}

// Only the fetched tags travel, as from the middleware's query. A UTF-16 text's stored bytes are
// big-endian and stay so in memory.
void CopyFetched(const TCStoredService &service, const TCCriteriaHelper &criteria, TCServiceData &data)
{
    for (int field : criteria.FetchedFields()) {
        auto number = service.tags.find(field);
        if (number != service.tags.end())
            data.Set(field, number->second);
        if (TCServiceDataStore::ColumnOfTextTag(field) == nullptr)
            continue;
        // Every service holds the text tags: a NULL column is an empty text.
        auto text = service.texts.find(field);
        const std::string bytes = text == service.texts.end() ? std::string() : text->second;
        if (field == TCServiceDataStore::kTextTag16) {
            TCString16 units(bytes.size() / 2, 0);
            if (!units.empty())
                __builtin_memcpy(&units[0], bytes.data(), units.size() * 2);
            data.SetString16(field, units);
        } else {
            data.SetString(field, bytes);
        }
    }
}

bool ReadServices(std::vector<TCStoredService> &services)
{
    std::string path;
    return PathUnder(TZ_SYS_DB, TCServiceDataStore::kServiceDbName, path) &&
           TCServiceDataStore::ReadServices(path, services);
}

class TCServiceSimulator : public IService {
public:
    int FindServiceList(const TCCriteriaHelper &criteria, std::list<TCServiceData *> &out) override
    {
        std::vector<TCStoredService> services;
        if (!ReadServices(services))
            return -1;
        int found = 0;
        for (const auto &service : services) {
            if (!SatisfiesAll(service, criteria))
                continue;
            auto data = std::make_unique<TCServiceData>();
            CopyFetched(service, criteria, *data);
            out.push_back(data.release());
            ++found;
        }
        return found;
    }

    int FindService(const TCCriteriaHelper &criteria, TCServiceData &out) override
    {
        std::vector<TCStoredService> services;
        if (!ReadServices(services))
            return -1;
        for (const auto &service : services) {
            if (SatisfiesAll(service, criteria)) {
                CopyFetched(service, criteria, out);
                return 1;
            }
        }
        return -1;
    }

    int WriteChannelMapMemoryDump() override
    {
        std::string services;
        std::string dump;
        if (!PathUnder(TZ_SYS_DB, TCServiceDataStore::kServiceDbName, services) ||
            !PathUnder(TZ_SYS_RW_APP, TCServiceDataStore::kChannelMapDump, dump))
            return -1;
        return TCServiceDataStore::WriteChannelMapDump(services, dump) ? 1 : -1;
    }
};

class TCServiceGuideSimulator : public IServiceGuide {
public:
    int FindProgramList(unsigned long long serviceId, unsigned int startTime, unsigned int duration,
                        std::map<unsigned int, TCProgramData *> &out) override
    {
        std::string path;
        std::vector<TCStoredEvent> events;
        long long from = startTime;
        if (!PathUnder(TZ_SYS_DB, TCServiceDataStore::kGuideDbName, path) ||
            !TCServiceDataStore::ReadEvents(path, serviceId, from, from + duration, events))
            return 0;
        for (const auto &e : events) {
            auto data = std::make_unique<TCProgramData>();
            data->SetServiceId(serviceId);
            data->SetEventId(static_cast<unsigned short>(e.eventId));
            data->SetStartTime(static_cast<unsigned int>(e.startTime));
            data->SetDuration(static_cast<unsigned int>(e.duration));
            data->SetLanguage(TCServiceDataStore::LanguageCode(e.language));
            data->SetTitle(TCServiceDataStore::Utf8ToUtf16(e.title));
            data->SetExtendedText(TCServiceDataStore::Utf8ToUtf16(e.extendedText));
            TCProgramData *&slot = out[e.eventId];
            delete slot;
            slot = data.release();
        }
        return static_cast<int>(out.size());
    }
};
}  // namespace

IService *TVServiceAPI::CreateService()
{
    return new TCServiceSimulator();
}
IServiceGuide *TVServiceAPI::CreateServiceGuide()
{
    return new TCServiceGuideSimulator();
}
