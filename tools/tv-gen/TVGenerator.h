// The reference TV: a deterministic, seeded television for the dump to work on. One seed and one
// "now" always give the same services, guide, server metadata and files.
#ifndef KELVO_TOOLS_TVGENERATOR_H
#define KELVO_TOOLS_TVGENERATOR_H

#include <cstdint>
#include <string>
#include <vector>

#include <json/json.h>

#include "TVServiceDataStore.h"

struct KelvoTvGenOptions {
    std::string optDir;       // the TV's /opt
    std::string fixturePath;  // the content daemon's server metadata
    std::string expectedDir;  // expected.json and expected.db
    int services = 240;
    // One more service whose guide has an event starting every second around both ends of the
    // day from "now", so that a dump's window is checked to the second (its rows then depend on
    // the moment the dump runs, which the quiet period otherwise hides).
    bool edgeService = false;
    uint64_t seed = 20261121;
    long long now = 0;
};

// splitmix64: the same numbers on every compiler and library, unlike <random>'s distributions.
class KelvoTvGenRandom {
public:
    explicit KelvoTvGenRandom(uint64_t seed) : m_state(seed) {}
    uint64_t Next();
    uint32_t Below(uint32_t bound);
    bool Percent(uint32_t percent) { return Below(100) < percent; }
    template <typename T>
    const T &Pick(const std::vector<T> &items)
    {
        return items[Below(static_cast<uint32_t>(items.size()))];
    }

private:
    uint64_t m_state;
};

struct KelvoTvGenSource {
    std::string id;
    std::string serviceId;  // decimal; empty when the TV has no such service
    const TCStoredService *service = nullptr;
    Json::Value programmes{Json::arrayValue};
};

class KelvoTvGenerator {
public:
    explicit KelvoTvGenerator(const KelvoTvGenOptions &options);
    bool Run(std::string &error);

    // The TV's folder tree under optDir, without data: every folder the set has, empty.
    static bool MakeLayout(const std::string &optDir, std::string &error);
    // The set's country code, which the product information answers (var/kelvo-sim/country).
    static bool WriteCountry(const std::string &optDir, int country, std::string &error);

    // How the dump database stores a text: apostrophes become double quotes (the dump's quoting)
    // and the statement formatter turns "%%" into "%" and drops any other conversion.
    static std::string StoredText(const std::string &text);
    // The export's selection: in the channel map (tag 17 not -1) and received over RF (tag 9 = 1).
    static bool IsExported(const TCStoredService &service);

private:
    void m_MakeServices();
    void m_MakeGuide();
    void m_MakeSources();
    void m_MakeAocServices();
    bool m_WriteFixture(std::string &error);
    bool m_WriteExpectations(std::string &error);
    bool m_WriteDataFolders(std::string &error);

    KelvoTvGenOptions m_options;
    KelvoTvGenRandom m_random;
    std::vector<TCStoredService> m_services;
    std::vector<TCStoredEvent> m_events;
    std::vector<KelvoTvGenSource> m_sources;
    // Listed after the others; kept apart, since the sources point into m_services.
    std::vector<TCStoredService> m_aocServices;
    // The programme guide that the app-on-channel services' applications have published to the
    // content daemon (the fixture's "aocPrograms").
    Json::Value m_aocPrograms{Json::objectValue};
};

#endif
