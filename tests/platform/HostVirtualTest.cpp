// The host platform parts of the virtual channels: time conversions with the zone offset, vconf
// keys and the product's country read from a simulated TV's control folder.
#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include "FCTimeWrapper.h"
#include "SimFolderTest.h"
#include "TVServiceAPI.h"
#include "vconf.h"

namespace {

TEST(HostTime, EpochToLocalAndBackThroughTheOffset)
{
    struct Row {
        unsigned long utc;
        int offset;
        bool dst;
        FCCalendarTime local;
    };
    const Row rows[] = {
        {0, 0, false, {1970, 1, 1, 0, 0, 0}},
        {1588328430, 0, false, {2020, 5, 1, 10, 20, 30}},
        {1588328430, -540, false, {2020, 5, 1, 19, 20, 30}},  // +09:00
        {1588328430, 300, false, {2020, 5, 1, 5, 20, 30}},    // -05:00
        {1588328430, 0, true, {2020, 5, 1, 11, 20, 30}},
        {1583020799, -60, false, {2020, 3, 1, 0, 59, 59}},  // across the leap day
        {4294967295UL, 0, false, {2106, 2, 7, 6, 28, 15}},
    };
    for (const Row &row : rows) {
        SCOPED_TRACE(testing::Message() << row.utc << " " << row.offset << " " << row.dst);
        FCCalendarTime local;
        ASSERT_TRUE(FCTimeWrapper::ConvertEpoch(local, row.utc, row.offset, row.dst));
        EXPECT_EQ(local.year, row.local.year);
        EXPECT_EQ(local.month, row.local.month);
        EXPECT_EQ(local.day, row.local.day);
        EXPECT_EQ(local.hour, row.local.hour);
        EXPECT_EQ(local.minute, row.local.minute);
        EXPECT_EQ(local.second, row.local.second);
        unsigned long back = 0;
        ASSERT_TRUE(FCTimeWrapper::ConvertLocal(back, row.local, row.offset, row.dst));
        EXPECT_EQ(back, row.utc);
    }
    const unsigned long before = static_cast<unsigned long>(time(nullptr));
    const unsigned long now = FCTimeWrapper::EpochTime();
    EXPECT_GE(now, before);
    EXPECT_LE(now, before + 5);
}

using HostSimFolder = KelvoSimFolderTest;

TEST_F(HostSimFolder, VconfReadsOneFilePerKey)
{
    const char *const key = "db/menu/tarn_deck/homedatacontrol/defaultdisclaimeragree";
    struct Row {
        const char *content;  // null: no file
        int result, value;
    };
    const Row rows[] = {
        {"1\n", VCONF_OK, 1},  {" -7 ", VCONF_OK, -7},   {"0", VCONF_OK, 0},       {nullptr, VCONF_ERROR, 42},
        {"", VCONF_ERROR, 42}, {"yes", VCONF_ERROR, 42}, {"1 2", VCONF_ERROR, 42}, {"99999999999", VCONF_ERROR, 42},
    };
    for (const Row &row : rows) {
        SCOPED_TRACE(row.content != nullptr ? row.content : "(no file)");
        std::filesystem::remove_all(m_folder + "/vconf");
        if (row.content != nullptr)
            Write(std::string("vconf/") + key, row.content);
        int value = 42;
        EXPECT_EQ(vconf_get_int(key, &value), row.result);
        EXPECT_EQ(value, row.value);
    }
}

// A key names a file below vconf/, and only a regular file.
TEST_F(HostSimFolder, VconfKeysStayBelowTheirFolder)
{
    Write("secret", "5");
    Write("vconf/a/b", "5");
    int value = 42;
    for (const char *key : {"../secret", "/secret", "a/../../secret", "a", ""}) {
        SCOPED_TRACE(key);
        EXPECT_EQ(vconf_get_int(key, &value), VCONF_ERROR);
    }
    ASSERT_EQ(mkfifo((m_folder + "/vconf/fifo").c_str(), 0600), 0);
    EXPECT_EQ(vconf_get_int("fifo", &value), VCONF_ERROR);
    EXPECT_EQ(value, 42);
    EXPECT_EQ(vconf_get_int(nullptr, &value), VCONF_ERROR);
    EXPECT_EQ(vconf_get_int("a/b", nullptr), VCONF_ERROR);
}

TEST_F(HostSimFolder, TheProductsCountryIsTheTvsOwn)
{
    struct Row {
        const char *content;  // null: no file
        bool known;
        int country;
    };
    const Row rows[] = {{nullptr, true, 1}, {"34\n", true, 34}, {"0", true, 0}, {"Brazil", false, -5}};
    for (const Row &row : rows) {
        SCOPED_TRACE(row.content != nullptr ? row.content : "(no file)");
        std::filesystem::remove(m_folder + "/country");
        if (row.content != nullptr)
            Write("country", row.content);
        ISOSpecApp *app = nullptr;
        EXPECT_EQ(TVServiceAPI::CreateSOSpecApp(1, 0, &app), 0);
        ASSERT_NE(app, nullptr);
        int country = -5;
        EXPECT_EQ(app->GetIntValue(SOSPEC_ITEM_COUNTRY, country), row.known);
        EXPECT_EQ(country, row.country);
        EXPECT_FALSE(app->GetIntValue(2, country));
        TVServiceAPI::Destroy(app);
    }
}

}  // namespace
