// The reference TV: the same seed makes the same TV, and what the generator promises in its
// expectations is what the simulator and the fixture really hold (the dump's integration tests
// compare against those promises).
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <json/json.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <string>
#include <vector>

#include "TVServiceAPI.h"
#include "TvsTestState.h"

namespace fs = std::filesystem;

namespace {
const long long kNow = 1795000000;

int Generate(const std::string &root, const std::string &seed, int services = 60, long long now = kNow)
{
    std::string command = std::string(KELVO_TV_GEN) + " --opt " + root + "/opt --fixture " + root +
                          "/fixture.json --services " + std::to_string(services) + " --seed " + seed + " --now " +
                          std::to_string(now);
    return std::system(command.c_str());
}

std::map<std::string, std::string> Files(const std::string &root)
{
    std::map<std::string, std::string> files;
    for (const auto &entry : fs::recursive_directory_iterator(root))
        if (entry.is_regular_file())
            files[fs::relative(entry.path(), root).string()] = TvsTestState::Slurp(entry.path().string());
    return files;
}

Json::Value ReadJson(const std::string &path)
{
    Json::Value value;
    std::ifstream in(path);
    Json::CharReaderBuilder builder;
    std::string errors;
    EXPECT_TRUE(Json::parseFromStream(builder, in, &value, &errors)) << path << ": " << errors;
    return value;
}
}  // namespace

TEST(ReferenceTv, SameSeedSameFilesOtherSeedOtherTv)
{
    TvsTestState a, b, c;
    ASSERT_EQ(Generate(a.Root(), "7"), 0);
    ASSERT_EQ(Generate(b.Root(), "7"), 0);
    ASSERT_EQ(Generate(c.Root(), "8"), 0);
    auto first = Files(a.Root());
    auto second = Files(b.Root());
    ASSERT_GT(first.size(), 15u);
    EXPECT_EQ(first, second);
    auto other = Files(c.Root());
    EXPECT_NE(first.at("fixture.json"), other.at("fixture.json"));
    EXPECT_NE(first.at("opt/dbspace/db-tvs-service.db"), other.at("opt/dbspace/db-tvs-service.db"));
}

// The reference TV holds what the dump must cope with, and any start up to the end of its quiet
// period gives the same guide rows (the dump's integration tests run a few seconds after "now").
TEST(ReferenceTv, ExpectationsHoldTheHardCasesAndAStableDay)
{
    TvsTestState state;
    ASSERT_EQ(Generate(state.Root(), "20261121", 120), 0);
    setenv("TZ_SYS_DB", (state.Root() + "/opt/dbspace").c_str(), 1);
    Json::Value expected = ReadJson(state.Root() + "/expected.json");
    Json::Value fixture = ReadJson(state.Root() + "/fixture.json");
    EXPECT_GT(expected["excludedServices"].asInt(), 0) << "services the export leaves out";
    EXPECT_GT(expected["selectedWithoutMinor"].size(), 0u) << "selected services lacking a fetched tag";
    std::vector<std::string> promised;
    for (const auto &id : expected["selectedServices"])
        promised.push_back(id.asString());

    // Any start up to the end of the quiet period gives the same rows.
    for (long long start : {kNow, static_cast<long long>(expected["windowStartLatest"].asInt64())}) {
        IServiceGuide *guide = TVServiceAPI::CreateServiceGuide();
        int rows = 0;
        int servicesWithoutGuide = 0;
        for (const auto &id : promised) {
            std::map<unsigned int, TCProgramData *> events;
            int count = guide->FindProgramList(std::stoull(id), static_cast<unsigned int>(start), 86400, events);
            rows += count;
            servicesWithoutGuide += count == 0;
            EXPECT_EQ(count, expected["rfRowsPerService"].get(id, 0).asInt()) << id;
            for (auto &entry : events)
                delete entry.second;
        }
        TVServiceAPI::Destroy(guide);
        EXPECT_EQ(rows, expected["rfRowsInWindow"].asInt()) << "window from " << start;
        EXPECT_GT(servicesWithoutGuide, 0) << "some selected services broadcast no guide";
    }

    EXPECT_GE(expected["unmatchedSources"].size(), 3u) << "sources the TV has no service for";
    for (const auto &id : expected["unmatchedSources"])
        EXPECT_FALSE(fixture["sourceToService"].isMember(id.asString())) << id;
    EXPECT_GT(fixture["programs"].size(), expected["sourcesInWindow"].size())
        << "a source the server sends nothing for in the coming day";
}

// The generator is the one maker of the TV's folder tree: a minimal TV is that tree and nothing
// else, and the reference TV has every folder of it too.
TEST(TvLayout, MinimalTvIsTheFolderTreeAlone)
{
    const std::vector<std::string> layout = {
        "dbspace",
        "var/kelvo-sim",
        "usr/home/owner/apps_rw/com.halvorn.tv.kelvo-daemon/data",
        "usr/home/owner/apps_rw/com.halvorn.tv.kelvo-daemon/shared/kelvo/data",
        "usr/home/owner/apps_rw/org.tizen.content-tiles-provider/data",
        "usr/home/owner/apps_rw/ContentServiceManager/data",
        "usr/globalapps/esg-service/data",
        "usr/globalapps/tvs-chms/data",
        "usr/globalapps/tvs-iss/data",
        "usr/globalapps/tvs-sospec/data",
        "usr/globalapps/tvs-guide/data",
        "usr/globalapps/reminder/data",
    };
    std::string root = (fs::temp_directory_path() / "kelvo-tv-layout-XXXXXX").string();
    ASSERT_NE(mkdtemp(root.data()), nullptr);
    ASSERT_EQ(std::system((std::string(KELVO_TV_GEN) + " --opt " + root + "/minimal --minimal").c_str()), 0);
    ASSERT_EQ(Generate(root + "/reference", "7"), 0);

    std::vector<std::string> leaves;
    for (const auto &entry : fs::recursive_directory_iterator(root + "/minimal"))
        if (entry.is_directory() && fs::is_empty(entry.path()))
            leaves.push_back(fs::relative(entry.path(), root + "/minimal").string());
    std::sort(leaves.begin(), leaves.end());
    std::vector<std::string> sorted = layout;
    std::sort(sorted.begin(), sorted.end());
    EXPECT_EQ(leaves, sorted);
    EXPECT_EQ(Files(root + "/minimal").size(), 0u);
    for (const auto &folder : layout)
        EXPECT_TRUE(fs::is_directory(root + "/reference/opt/" + folder)) << folder;
    fs::remove_all(root);
}
