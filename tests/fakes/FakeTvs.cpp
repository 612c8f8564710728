#include "FakeTvs.h"

namespace {
std::vector<FakeTvsService> g_services;
std::map<unsigned long long, FakeTvsGuide> g_guides;
int g_backupResult = 1;
int g_restoreResult = 1;
bool g_failService = false;
bool g_failGuide = false;
bool g_failUtil = false;
std::vector<std::string> g_calls;
std::vector<TCCriteriaHelper> g_criteria;
std::vector<FakeTvsProgramQuery> g_programQueries;
int g_liveServiceData = 0;
int g_liveProgramData = 0;

class CountedServiceData : public TCServiceData {
public:
    CountedServiceData() { ++g_liveServiceData; }
    ~CountedServiceData() override { --g_liveServiceData; }
};

class CountedProgramData : public TCProgramData {
public:
    CountedProgramData() { ++g_liveProgramData; }
    CountedProgramData(const CountedProgramData &other) : TCProgramData(other) { ++g_liveProgramData; }
    ~CountedProgramData() override { --g_liveProgramData; }
};

class FakeService : public IService {
public:
    ~FakeService() override { g_calls.push_back("Destroy(IService)"); }

    int FindServiceList(const TCCriteriaHelper &criteria, std::list<TCServiceData *> &out) override
    {
        g_calls.push_back("FindServiceList");
        g_criteria.push_back(criteria);
        for (const FakeTvsService &service : g_services) {
            if (service.null) {
                out.push_back(nullptr);
                continue;
            }
            auto *data = new CountedServiceData();
            for (const auto &field : service.fields)
                data->Set(field.first, field.second);
            out.push_back(data);
        }
        return static_cast<int>(out.size());
    }

    int WriteChannelMapMemoryDump() override
    {
        g_calls.push_back("WriteChannelMapMemoryDump");
        return 1;
    }
};

class FakeGuide : public IServiceGuide {
public:
    ~FakeGuide() override { g_calls.push_back("Destroy(IServiceGuide)"); }

    int FindProgramList(unsigned long long serviceId, unsigned int startTime, unsigned int duration,
                        std::map<unsigned int, TCProgramData *> &out) override
    {
        g_calls.push_back("FindProgramList");
        g_programQueries.push_back({serviceId, startTime, duration});
        auto it = g_guides.find(serviceId);
        if (it == g_guides.end())
            return 0;
        for (const FakeTvsEvent &event : it->second.events) {
            if (event.null) {
                out[event.eventId] = nullptr;
                continue;
            }
            auto *data = new CountedProgramData();
            data->SetServiceId(serviceId);
            data->SetEventId(event.eventId);
            data->SetStartTime(event.startTime);
            data->SetDuration(event.duration);
            data->SetLanguage(event.language);
            data->SetTitle(event.title);
            data->SetExtendedText(event.extendedText);
            out[event.eventId] = data;
        }
        return it->second.count != FakeTvsGuide::EVENT_COUNT ? it->second.count
                                                             : static_cast<int>(it->second.events.size());
    }
};

class FakeUtil : public IUtil {
public:
    ~FakeUtil() override { g_calls.push_back("Destroy(IUtil)"); }

    int BackupTVSData(const char *folder) override
    {
        g_calls.push_back(std::string("BackupTVSData(") + folder + ")");
        return g_backupResult;
    }

    int RestoreTVSData(const char *folder) override
    {
        g_calls.push_back(std::string("RestoreTVSData(") + folder + ")");
        return g_restoreResult;
    }
};
}  // namespace

IService *TVServiceAPI::CreateService()
{
    g_calls.push_back("CreateService");
    return g_failService ? nullptr : new FakeService();
}

IServiceGuide *TVServiceAPI::CreateServiceGuide()
{
    g_calls.push_back("CreateServiceGuide");
    return g_failGuide ? nullptr : new FakeGuide();
}

IUtil *TVServiceAPI::CreateUtil()
{
    g_calls.push_back("CreateUtil");
    return g_failUtil ? nullptr : new FakeUtil();
}

namespace FakeTvs {
void Reset()
{
    g_services.clear();
    g_guides.clear();
    g_backupResult = 1;
    g_restoreResult = 1;
    g_failService = g_failGuide = g_failUtil = false;
    g_calls.clear();
    g_criteria.clear();
    g_programQueries.clear();
}

void SetServices(const std::vector<FakeTvsService> &services) { g_services = services; }
void SetGuide(unsigned long long serviceId, const FakeTvsGuide &guide) { g_guides[serviceId] = guide; }
void SetBackupResult(int result) { g_backupResult = result; }
void SetRestoreResult(int result) { g_restoreResult = result; }

void FailCreate(bool service, bool guide, bool util)
{
    g_failService = service;
    g_failGuide = guide;
    g_failUtil = util;
}

std::vector<std::string> Calls() { return g_calls; }
std::vector<TCCriteriaHelper> Criteria() { return g_criteria; }
std::vector<FakeTvsProgramQuery> ProgramQueries() { return g_programQueries; }
int LiveServiceData() { return g_liveServiceData; }
int LiveProgramData() { return g_liveProgramData; }
}  // namespace FakeTvs
