// The app-on-channel data helper over the reference TV's services, as the TV simulator reads them
// from the files kelvo-tv-gen writes.
#include <sqlite3.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <map>
#include <string>

#include <gtest/gtest.h>

#include "FCAocDataUtil.h"
#include "FakeDlog.h"
#include "dlog.h"

namespace {

struct Expected {
    bool aoc;
    std::string packageId;
    int appType;
    std::string realData;
};

// The reference TV's services by name, with their ids.
std::map<std::string, unsigned long long> Services(const std::string &db)
{
    std::map<std::string, unsigned long long> services;
    sqlite3 *handle = nullptr;
    sqlite3_stmt *stmt = nullptr;
    if (sqlite3_open_v2(db.c_str(), &handle, SQLITE_OPEN_READONLY, nullptr) == SQLITE_OK &&
        sqlite3_prepare_v2(handle, "SELECT name, service_id FROM service", -1, &stmt, nullptr) == SQLITE_OK) {
        while (sqlite3_step(stmt) == SQLITE_ROW)
            services[reinterpret_cast<const char *>(sqlite3_column_text(stmt, 0))] =
                static_cast<unsigned long long>(sqlite3_column_int64(stmt, 1));
    }
    sqlite3_finalize(stmt);
    sqlite3_close(handle);
    return services;
}

class AocReferenceTv : public ::testing::Test {
protected:
    static void SetUpTestSuite()
    {
        std::string pattern = (std::filesystem::temp_directory_path() / "kelvo-aoc-XXXXXX").string();
        ASSERT_NE(mkdtemp(pattern.data()), nullptr);
        s_root = pattern;
        std::string command = std::string(KELVO_TV_GEN) + " --opt " + s_root + "/opt --fixture " + s_root +
                              "/fixture.json --services 40 --now 1795000000";
        ASSERT_EQ(std::system(command.c_str()), 0);
        setenv("TZ_SYS_DB", (s_root + "/opt/dbspace").c_str(), 1);
    }
    static void TearDownTestSuite()
    {
        std::error_code ignored;
        std::filesystem::remove_all(s_root, ignored);
    }
    void SetUp() override { FakeDlog::Clear(); }

    inline static std::string s_root;
};

// Every route to false and the one to true; a service that is simply not app-on-channel logs no
// error.
TEST_F(AocReferenceTv, IsAocTypeOverEveryService)
{
    const std::map<std::string, Expected> apps = {
        {"Halvorn Games", {true, "com.halvorn.games", 1, "lobby \xF0\x9F\x8E\xAE level=3"}},
        {"Fjord Radio App", {true, "com.fjord.radio", 1, "\xF0\x9D\x84\x9E stream=hq"}},
        {"Orphan App", {false, "", 1, "no package"}},
        {"Widget Board", {false, "com.halvorn.widgets", 2, "board"}},
        {"Untyped App", {false, "com.halvorn.untyped", APP_TYPE_NONE, "nothing says what I am"}},
        {"Nul App", {false, "", 1, ""}},
    };
    const auto services = Services(s_root + "/opt/dbspace/db-tvs-service.db");
    ASSERT_GT(services.size(), apps.size());
    int broadcast = 0;
    for (const auto &service : services) {
        SCOPED_TRACE(service.first);
        auto app = apps.find(service.first);
        const Expected expected = app != apps.end() ? app->second : Expected{false, "", APP_TYPE_NONE, ""};
        broadcast += app == apps.end();
        EXPECT_EQ(FCAocDataHelper::IsAocType(service.second), expected.aoc);
        FCAocExtraData extra;
        std::string packageId = "previous";
        ASSERT_TRUE(FCAocDataHelper::GetPackageIdExtraData(extra, service.second, packageId));
        EXPECT_EQ(packageId, expected.packageId);
        EXPECT_EQ(extra.m_packageId, expected.packageId);
        EXPECT_EQ(FCAocDataHelper::GetAppTypeFromAocExtraData(extra), expected.appType);
        EXPECT_EQ(extra.m_realData, expected.realData);
    }
    EXPECT_GT(broadcast, 0);
    for (const auto &line : FakeDlog::Lines())
        EXPECT_LT(line.prio, DLOG_WARN) << line.text;
}

TEST_F(AocReferenceTv, AnUnknownServiceHasNoData)
{
    FCAocExtraData extra;
    std::string packageId = "untouched";
    EXPECT_FALSE(FCAocDataHelper::GetPackageIdExtraData(extra, 12345, packageId));
    EXPECT_EQ(packageId, "untouched");
    EXPECT_FALSE(FCAocDataHelper::IsAocType(12345));
}

// The extra data's other fields arrive from the UTF-16 text, characters outside the Basic
// Multilingual Plane included.
TEST_F(AocReferenceTv, ExtraDataFieldsOfAnAocService)
{
    FCAocExtraData extra;
    std::string packageId;
    ASSERT_TRUE(FCAocDataHelper::GetPackageIdExtraData(
        extra, Services(s_root + "/opt/dbspace/db-tvs-service.db").at("Halvorn Games"), packageId));
    EXPECT_EQ(extra.m_isReadableData, 1u);
    EXPECT_EQ(extra.m_providerFlag, "halvorn");
    EXPECT_EQ(extra.m_channelId, "aoc-games");
    EXPECT_EQ(extra.m_programEventId, "games-1");
    EXPECT_EQ(FCAocDataHelper::GetRealDataFromAocExtraData(extra, "com.other", "halvorn"), extra.m_realData);
}

}  // namespace
