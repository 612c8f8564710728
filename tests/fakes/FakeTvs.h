// The TVS middleware client with scripted services, guides and backup/restore answers.
// TCServiceData, TCProgramData and TVServiceAPI::Destroy are the real ones; whether the caller
// deletes what it is handed shows in the ASan build.
#ifndef KELVO_TESTS_FAKE_TVS_H
#define KELVO_TESTS_FAKE_TVS_H

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "TVServiceAPI.h"

struct FakeTvsGuide {
    std::vector<int> events;   // event ids of the map handed out; -n: a null record at key n
    std::optional<int> count;  // the query's answer; by default the number of events
};

namespace FakeTvs {
// No service or guide, backup and restore answering 1, every Create giving an object.
void Reset();
// Records in list order; an empty field map stands for a null pointer in its place.
void SetServices(const std::vector<std::map<int, long long>> &services);
void SetGuide(unsigned long long serviceId, const FakeTvsGuide &guide);
void SetBackupResult(int result);
void SetRestoreResult(int result);
void FailCreateUtil();
// The country code the product information answers; nullopt: CreateSOSpecApp gives no object.
// Reset sets 1, a country no table of its own claims.
void SetCountry(std::optional<int> country);
// The product information holds no country: GetIntValue fails.
void FailCountryQuery();
// Product-information objects handed out and not yet destroyed.
int LiveSOSpecApps();

// In order: "WriteChannelMapMemoryDump", "FindServiceList", "FindService",
// "FindProgramList(<service>, <start>, <duration>)", "BackupTVSData(<folder>)",
// "RestoreTVSData(<folder>)", "CreateSOSpecApp(<profile>, <flags>)", "GetIntValue(<item>)".
std::vector<std::string> Calls();
std::vector<TCCriteriaHelper> Criteria();
}  // namespace FakeTvs

#endif
