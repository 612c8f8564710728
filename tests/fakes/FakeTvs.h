// The TVS middleware client with scripted services, guide events and backup/restore results.
// Records every call; counts the records it hands out that are still alive, so that a test sees
// whether the caller deleted them. TCServiceData, TCProgramData and TVServiceAPI::Destroy are the
// real ones (kelvo-platform-tvs-records).
#ifndef KELVO_TESTS_FAKE_TVS_H
#define KELVO_TESTS_FAKE_TVS_H

#include <map>
#include <string>
#include <vector>

#include "TVServiceAPI.h"

struct FakeTvsService {
    bool null = false;  // hand out a null pointer in this place of the list
    std::map<int, long long> fields;
};

struct FakeTvsEvent {
    bool null = false;
    unsigned short eventId = 0;
    unsigned int startTime = 0;
    unsigned int duration = 0;
    unsigned int language = 0;
    std::u16string title;
    std::u16string extendedText;
};

struct FakeTvsGuide {
    static constexpr int EVENT_COUNT = -2147483647 - 1;
    std::vector<FakeTvsEvent> events;  // keyed by event id in the map handed out
    int count = EVENT_COUNT;           // the query's result; EVENT_COUNT: the number of events
};

struct FakeTvsProgramQuery {
    unsigned long long serviceId;
    unsigned int startTime;
    unsigned int duration;
};

namespace FakeTvs {
// Everything empty, backup and restore answering 1, every Create giving an object.
void Reset();
void SetServices(const std::vector<FakeTvsService> &services);
void SetGuide(unsigned long long serviceId, const FakeTvsGuide &guide);
void SetBackupResult(int result);
void SetRestoreResult(int result);
void FailCreate(bool service, bool guide, bool util);

// Calls in order: "CreateService", "FindServiceList", "WriteChannelMapMemoryDump",
// "CreateServiceGuide", "FindProgramList", "CreateUtil", "BackupTVSData(<folder>)",
// "RestoreTVSData(<folder>)", "Destroy(IService|IServiceGuide|IUtil)".
std::vector<std::string> Calls();
std::vector<TCCriteriaHelper> Criteria();
std::vector<FakeTvsProgramQuery> ProgramQueries();
// Records handed out and not yet deleted.
int LiveServiceData();
int LiveProgramData();
}  // namespace FakeTvs

#endif
