// The TV simulator as the dump sees it: which services a query returns and with which tags,
// which guide events fall into a window, and how texts reach the middleware's records.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sqlite3.h>

#include <cstring>
#include <list>
#include <map>
#include <memory>

#include "KelvoHostLog.h"
#include "TVServiceAPI.h"
#include "TvsTestState.h"

using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {
// The tags a service may hold (see TVServiceDataStore.h), 0 meaning "not held". Type, source,
// major and minor differ, so that a tag read from another's column shows.
TCStoredService Service(const char *name, long long id, long long rf, long long chmap, long long minor = 3)
{
    TCStoredService s;
    s.name = name;
    s.tags = {{1, 1}, {2, 4}, {12, id}, {13, 7}, {17, chmap}};
    if (rf >= 0)
        s.tags[9] = rf;
    if (minor > 0)
        s.tags[14] = minor;
    return s;
}

struct Found {
    int result;
    std::vector<long long> ids;                    // tag 12 of each returned service, in order
    std::vector<std::vector<int>> heldFetched;     // which fetched tags each one holds
    std::vector<std::map<int, long long>> values;  // and their values
};

Found Query(const TCCriteriaHelper &criteria)
{
    IService *service = TVServiceAPI::CreateService();
    std::list<TCServiceData *> list;
    Found found{service->FindServiceList(criteria, list), {}, {}, {}};
    TVServiceAPI::Destroy(service);
    for (TCServiceData *data : list) {
        std::vector<int> held;
        std::map<int, long long> values;
        for (int tag = 0; tag < 32; ++tag) {
            if (data->Has(tag)) {
                held.push_back(tag);
                values[tag] = data->Get(tag);
            }
        }
        found.heldFetched.push_back(held);
        found.values.push_back(values);
        found.ids.push_back(data->Has(12) ? data->Get(12) : -1);
        delete data;
    }
    return found;
}

TCCriteriaHelper ExportCriteria()
{
    TCCriteriaHelper c;
    c.WhereNot(17, -1);
    c.Where(9, 1);
    for (int tag : {12, 13, 14, 1, 2})
        c.Fetch(tag);
    return c;
}

class ServiceQuery : public ::testing::Test {
protected:
    void SetUp() override
    {
        m_state.WriteServices({
            Service("in map, RF", 101, 1, 0),
            Service("not in map", 102, 1, -1),
            Service("not RF", 103, 0, 1),
            Service("analogue, no minor", 104, 1, 2, 0),
            Service("no RF tag", 105, -1, 3),
            Service("virtual id", static_cast<long long>(0x9000000000000105ull), 1, 4),
        });
    }
    TvsTestState m_state;
};
}  // namespace

TEST_F(ServiceQuery, ConditionsSelectByTagNumber)
{
    struct Case {
        const char *what;
        std::vector<TCCriteriaHelper::Condition> conditions;
        std::vector<long long> ids;
    } cases[] = {
        {"the export's selection",
         {{17, -1, true}, {9, 1, false}},
         {101, 104, static_cast<long long>(0x9000000000000105ull)}},
        {"no condition: every service", {}, {101, 102, 103, 104, 105, static_cast<long long>(0x9000000000000105ull)}},
        {"Where on the map position", {{17, 1, false}}, {103}},
        {"WhereNot alone", {{9, 1, true}}, {103, 105}},
        {"Where on a tag a service lacks never matches it", {{9, 0, false}}, {103}},
        {"Where on a tag no service holds", {{99, 0, false}}, {}},
        {"WhereNot on a tag no service holds",
         {{99, 0, true}},
         {101, 102, 103, 104, 105, static_cast<long long>(0x9000000000000105ull)}},
        {"conditions are and-ed", {{9, 1, false}, {17, 0, false}}, {101}},
    };
    for (const Case &c : cases) {
        TCCriteriaHelper criteria;
        for (const auto &condition : c.conditions)
            condition.negated ? criteria.WhereNot(condition.field, condition.value)
                              : criteria.Where(condition.field, condition.value);
        criteria.Fetch(12);
        Found found = Query(criteria);
        EXPECT_EQ(found.ids, c.ids) << c.what;
        EXPECT_EQ(found.result, static_cast<int>(c.ids.size())) << c.what;
    }
}

TEST_F(ServiceQuery, OnlyFetchedTagsTravel)
{
    Found found = Query(ExportCriteria());
    ASSERT_EQ(found.heldFetched.size(), 3u);
    EXPECT_THAT(found.heldFetched[0], ElementsAre(1, 2, 12, 13, 14));
    EXPECT_THAT(found.heldFetched[1], ElementsAre(1, 2, 12, 13)) << "the analogue service holds no minor";
    for (const auto &[tag, value] : std::map<int, long long>{{1, 1}, {2, 4}, {12, 101}, {13, 7}, {14, 3}})
        EXPECT_EQ(found.values[0][tag], value) << "tag " << tag;

    TCCriteriaHelper nothingFetched;
    nothingFetched.Where(12, 101);
    Found bare = Query(nothingFetched);
    ASSERT_EQ(bare.heldFetched.size(), 1u);
    EXPECT_THAT(bare.heldFetched[0], IsEmpty()) << "a condition's tag is not fetched by itself";
}

TEST_F(ServiceQuery, ReadingAnAbsentTagPrintsTheMissingTagLinesAndYieldsZero)
{
    IService *service = TVServiceAPI::CreateService();
    std::list<TCServiceData *> list;
    service->FindServiceList(ExportCriteria(), list);
    TVServiceAPI::Destroy(service);
    ASSERT_EQ(list.size(), 3u);
    TCServiceData *analogue = *std::next(list.begin());

    ::testing::internal::CaptureStderr();
    long long present = analogue->Get(13);
    KelvoHostLog::Flush();
    std::string quiet = ::testing::internal::GetCapturedStderr();
    ::testing::internal::CaptureStderr();
    long long minor = analogue->Get(14);
    long long notFetched = analogue->Get(17);
    KelvoHostLog::Flush();
    std::string printed = ::testing::internal::GetCapturedStderr();

    EXPECT_EQ(present, 7);
    EXPECT_EQ(quiet, "");
    EXPECT_EQ(minor, 0);
    EXPECT_EQ(notFetched, 0);
    EXPECT_EQ(printed, "*************************** ASSERT TAG ***************************\n"
                       "******************* ASSERT: missing tag[ 14] *********************\n"
                       "*************************** ASSERT TAG ***************************\n"
                       "******************* ASSERT: missing tag[ 17] *********************\n");
    EXPECT_EQ(static_cast<unsigned long long>(list.back()->Get(12)), 0x9000000000000105ull)
        << "a 64-bit id above 2^63 comes back whole";
    for (TCServiceData *data : list)
        delete data;
}

TEST_F(ServiceQuery, ChannelMapDumpHoldsTheMappedServicesInMapOrder)
{
    IService *service = TVServiceAPI::CreateService();
    int result = service->WriteChannelMapMemoryDump();
    TVServiceAPI::Destroy(service);
    ASSERT_GT(result, 0);

    std::string path = m_state.RwApp() + "/tvs-chms/data/CHMS_Memory_Dump.sqlite";
    sqlite3 *db = nullptr;
    ASSERT_EQ(sqlite3_open_v2(path.c_str(), &db, SQLITE_OPEN_READONLY, nullptr), SQLITE_OK);
    sqlite3_stmt *stmt = nullptr;
    // Each row's service id, major, minor, type and source, as the command-line client shows them.
    ASSERT_EQ(
        sqlite3_prepare_v2(db, "SELECT service_id, major, minor, service_type, source FROM chmap ORDER BY chmap_index",
                           -1, &stmt, nullptr),
        SQLITE_OK);
    std::vector<std::string> rows;
    while (sqlite3_step(stmt) == SQLITE_ROW) {
        std::string row;
        for (int column = 0; column < 5; ++column) {
            const unsigned char *text = sqlite3_column_text(stmt, column);
            row += (column > 0 ? "|" : "") + std::string(text != nullptr ? reinterpret_cast<const char *>(text) : "");
        }
        rows.push_back(row);
    }
    sqlite3_finalize(stmt);
    sqlite3_close(db);
    EXPECT_THAT(rows, ElementsAre("101|7|3|1|4", "103|7|3|1|4", "104|7||1|4", "105|7|3|1|4",
                                  std::to_string(static_cast<long long>(0x9000000000000105ull)) + "|7|3|1|4"));
}

namespace {
TCStoredEvent Event(unsigned long long service, unsigned int id, long long start, const std::string &title = "t")
{
    TCStoredEvent e;
    e.serviceId = service;
    e.eventId = id;
    e.startTime = start;
    e.duration = 600;
    e.language = "eng";
    e.title = title;
    e.extendedText = "x";
    return e;
}

struct Guide {
    int count;
    std::vector<unsigned int> keys;
    std::map<unsigned int, std::unique_ptr<TCProgramData>> events;
};

Guide FindPrograms(unsigned long long service, unsigned int start, unsigned int duration)
{
    IServiceGuide *guide = TVServiceAPI::CreateServiceGuide();
    std::map<unsigned int, TCProgramData *> out;
    Guide g{guide->FindProgramList(service, start, duration, out), {}, {}};
    TVServiceAPI::Destroy(guide);
    for (auto &entry : out) {
        g.keys.push_back(entry.first);
        g.events[entry.first].reset(entry.second);
    }
    return g;
}
}  // namespace

TEST(ServiceGuide, WindowReachingPastTheThirtyTwoBitRangeDoesNotWrap)
{
    TvsTestState state;
    state.WriteGuide({Event(7, 1, 0xFFFFFFF0LL), Event(7, 2, 0x20LL)});
    Guide g = FindPrograms(7, 0xFFFFFF00u, 86400);
    EXPECT_THAT(g.keys, ElementsAre(1u));
}

// A TV without its databases: failures and empty answers, and no channel-map dump.
TEST(ServiceGuide, MissingDatabasesGiveNothing)
{
    TvsTestState state;
    Found found = Query(ExportCriteria());
    EXPECT_EQ(found.result, -1);
    EXPECT_THAT(found.ids, IsEmpty());
    EXPECT_EQ(FindPrograms(7, 1795000000u, 86400).count, 0);
    IService *service = TVServiceAPI::CreateService();
    EXPECT_LT(service->WriteChannelMapMemoryDump(), 0);
    TVServiceAPI::Destroy(service);
    EXPECT_NE(access((state.RwApp() + "/tvs-chms/data/CHMS_Memory_Dump.sqlite").c_str(), F_OK), 0);
}

TEST(ServiceGuide, TextsAreBigEndianUtf16AndLanguageIsPacked)
{
    TvsTestState state;
    TCStoredEvent e = Event(7, 42, 1000, "A\xC3\xA9\xF0\x9D\x84\x9E");  // "Aé𝄞": the clef is a surrogate pair
    e.language = "deu";
    e.extendedText = "\xE2\x80\x99";  // U+2019
    e.duration = 5400;
    state.WriteGuide({e});
    Guide g = FindPrograms(7, 1000, 10);
    ASSERT_EQ(g.count, 1);
    TCProgramData &p = *g.events[42];
    EXPECT_EQ(p.EventId(), 42);
    EXPECT_EQ(p.Duration(), 5400u);
    EXPECT_EQ(p.Language(), 0x646575u);

    ASSERT_EQ(p.TitleLength(), 4u);
    unsigned short title[4] = {};
    unsigned int length = 4;
    ASSERT_TRUE(p.Title(title, &length));
    EXPECT_EQ(length, 4u);
    const unsigned char expected[] = {0x00, 0x41, 0x00, 0xE9, 0xD8, 0x34, 0xDD, 0x1E};
    EXPECT_EQ(std::memcmp(title, expected, sizeof expected), 0);

    ASSERT_EQ(p.ExtendedTextLength(), 1u);
    unsigned short text[1] = {};
    length = 1;
    ASSERT_TRUE(p.ExtendedText(text, &length));
    const unsigned char quote[] = {0x20, 0x19};
    EXPECT_EQ(std::memcmp(text, quote, sizeof quote), 0);
}

TEST(ServiceGuide, Utf8DecodingOfStoredTexts)
{
    struct Case {
        const char *utf8;
        std::u16string units;
    } cases[] = {
        {"", u""},
        {"plain", u"plain"},
        {"\xC3\xB8", u"\u00F8"},
        {"\xED\x95\x9C", u"\uD55C"},
        {"\xF0\x9F\x8E\xAC", u"\U0001F3AC"},
        {"\xC3", u"\uFFFD"},                      // cut short
        {"\xC0\xAF", u"\uFFFD\uFFFD"},            // overlong '/'
        {"\xED\xA0\x80", u"\uFFFD\uFFFD\uFFFD"},  // an encoded surrogate
        {"a\xFF"
         "b",
         u"a\uFFFDb"},
    };
    for (const Case &c : cases)
        EXPECT_EQ(TCServiceDataStore::Utf8ToUtf16(c.utf8), c.units) << c.utf8;
    EXPECT_EQ(TCServiceDataStore::LanguageCode("eng"), 0x656E67u);
    EXPECT_EQ(TCServiceDataStore::LanguageCode(""), 0u);
}
