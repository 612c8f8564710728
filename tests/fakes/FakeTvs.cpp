#include "FakeTvs.h"

namespace {
std::vector<std::map<int, long long>> g_services;
std::map<unsigned long long, FakeTvsGuide> g_guides;
int g_backupResult = 1;
int g_restoreResult = 1;
bool g_failUtil = false;
std::vector<std::string> g_calls;
std::vector<TCCriteriaHelper> g_criteria;
std::optional<int> g_country = 1;
bool g_failCountryQuery = false;
int g_liveSOSpecApps = 0;

class FakeService : public IService {
public:
    int FindServiceList(const TCCriteriaHelper &criteria, std::list<TCServiceData *> &out) override
    {
        g_calls.push_back("FindServiceList");
        g_criteria.push_back(criteria);
        for (const auto &fields : g_services) {
            if (fields.empty()) {
                out.push_back(nullptr);
                continue;
            }
            auto *data = new TCServiceData();
            for (const auto &field : fields)
                data->Set(field.first, field.second);
            out.push_back(data);
        }
        return static_cast<int>(out.size());
    }

    // The first scripted service whose fields meet every condition, with all its fields.
    int FindService(const TCCriteriaHelper &criteria, TCServiceData &out) override
    {
        g_calls.push_back("FindService");
        g_criteria.push_back(criteria);
        for (const auto &fields : g_services) {
            bool match = !fields.empty();
            for (const auto &c : criteria.Conditions()) {
                auto it = fields.find(c.field);
                match = match && (it != fields.end() && it->second == c.value) != c.negated;
            }
            if (!match)
                continue;
            for (const auto &field : fields)
                out.Set(field.first, field.second);
            return 1;
        }
        return -1;
    }

    int WriteChannelMapMemoryDump() override
    {
        g_calls.push_back("WriteChannelMapMemoryDump");
        return 1;
    }
};

class FakeGuide : public IServiceGuide {
public:
    int FindProgramList(unsigned long long serviceId, unsigned int startTime, unsigned int duration,
                        std::map<unsigned int, TCProgramData *> &out) override
    {
        g_calls.push_back("FindProgramList(" + std::to_string(serviceId) + ", " + std::to_string(startTime) + ", " +
                          std::to_string(duration) + ")");
        const FakeTvsGuide &guide = g_guides[serviceId];
        for (int id : guide.events) {
            TCProgramData *data = id < 0 ? nullptr : new TCProgramData();
            if (data != nullptr) {
                data->SetServiceId(serviceId);
                data->SetEventId(static_cast<unsigned short>(id));
            }
            out[static_cast<unsigned int>(id < 0 ? -id : id)] = data;
        }
        return guide.count.value_or(static_cast<int>(guide.events.size()));
    }
};

class FakeUtil : public IUtil {
public:
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

class FakeSOSpecApp : public ISOSpecApp {
public:
    FakeSOSpecApp() { ++g_liveSOSpecApps; }
    ~FakeSOSpecApp() override { --g_liveSOSpecApps; }

    bool GetIntValue(int item, int &value) override
    {
        g_calls.push_back("GetIntValue(" + std::to_string(item) + ")");
        if (item != SOSPEC_ITEM_COUNTRY || g_failCountryQuery || !g_country)
            return false;
        value = *g_country;
        return true;
    }
};
}  // namespace

int TVServiceAPI::CreateSOSpecApp(int profile, int flags, ISOSpecApp **app)
{
    g_calls.push_back("CreateSOSpecApp(" + std::to_string(profile) + ", " + std::to_string(flags) + ")");
    *app = g_country ? new FakeSOSpecApp() : nullptr;
    return *app != nullptr ? 0 : -1;
}

IService *TVServiceAPI::CreateService()
{
    return new FakeService();
}
IServiceGuide *TVServiceAPI::CreateServiceGuide()
{
    return new FakeGuide();
}
IUtil *TVServiceAPI::CreateUtil()
{
    return g_failUtil ? nullptr : new FakeUtil();
}

namespace FakeTvs {
void Reset()
{
    g_services.clear();
    g_guides.clear();
    g_backupResult = g_restoreResult = 1;
    g_failUtil = false;
    g_country = 1;
    g_failCountryQuery = false;
    g_calls.clear();
    g_criteria.clear();
}

void SetServices(const std::vector<std::map<int, long long>> &services)
{
    g_services = services;
}
void SetGuide(unsigned long long serviceId, const FakeTvsGuide &guide)
{
    g_guides[serviceId] = guide;
}
void SetBackupResult(int result)
{
    g_backupResult = result;
}
void SetRestoreResult(int result)
{
    g_restoreResult = result;
}
void FailCreateUtil()
{
    g_failUtil = true;
}
void SetCountry(std::optional<int> country)
{
    g_country = country;
}
void FailCountryQuery()
{
    g_failCountryQuery = true;
}
int LiveSOSpecApps()
{
    return g_liveSOSpecApps;
}
std::vector<std::string> Calls()
{
    return g_calls;
}
std::vector<TCCriteriaHelper> Criteria()
{
    return g_criteria;
}
}  // namespace FakeTvs
