#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <json/json.h>

#include <memory>

#include "FCElementData.h"
#include "FakeCall.h"
#include "FakeDlog.h"
#include "FakeSystem.h"
#include "FakeTvs.h"
#include "RecordingDatabaseHelper.h"
#include "UtilTestSupport.h"
#include "dataHandler.h"

using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {
class ProgramExportTest : public UtilTest {
protected:
    KelvoUtilDataHandler m_handler;
};

FakeTvsService Service(long long id, long long major, long long minor, long long type)
{
    return {false, {{12, id}, {13, major}, {14, minor}, {1, type}, {2, 0}}};
}

FakeTvsEvent Event(unsigned short id, unsigned int start, const std::u16string &title)
{
    FakeTvsEvent event;
    event.eventId = id;
    event.startTime = start;
    event.duration = 1800;
    event.language = 0x656E67;
    event.title = title;
    return event;
}

TEST_F(ProgramExportTest, ChannelListQueryAndServiceIdsInListOrder)
{
    FakeTvsService none;
    none.null = true;
    FakeTvs::SetServices({Service(0x40000001, 7, 1, 1), none, Service(0x40000002, 11, 2, 2)});

    std::list<unsigned long long> ids = {99};
    m_handler.GetServiceIDFromChannelList(ids);

    EXPECT_THAT(ids, ElementsAre(99u, 0x40000001u, 0x40000002u));
    ASSERT_EQ(FakeTvs::Criteria().size(), 1u);
    const TCCriteriaHelper criteria = FakeTvs::Criteria()[0];
    ASSERT_EQ(criteria.Conditions().size(), 2u);
    EXPECT_EQ(criteria.Conditions()[0].field, 17);
    EXPECT_EQ(criteria.Conditions()[0].value, -1);
    EXPECT_TRUE(criteria.Conditions()[0].negated);
    EXPECT_EQ(criteria.Conditions()[1].field, 9);
    EXPECT_EQ(criteria.Conditions()[1].value, 1);
    EXPECT_FALSE(criteria.Conditions()[1].negated);
    EXPECT_THAT(criteria.FetchedFields(), ElementsAre(12, 13, 14, 1, 2));
    EXPECT_THAT(UtilLog(), ElementsAre("RF channels size : 3 ", "service Id: 1073741825 No:7-1 ,type:1",
                                       "service Id: 1073741826 No:11-2 ,type:2"));
    EXPECT_EQ(FakeTvs::LiveServiceData(), 0);
    EXPECT_THAT(FakeTvs::Calls(), ElementsAre("CreateService", "FindServiceList", "Destroy(IService)"));
}

TEST_F(ProgramExportTest, GuideWindowIsNowForOneDayPerService)
{
    FakeSystem::SetNow(0x100000000LL + 1700000000LL);  // only the low 32 bits reach the guide
    std::list<unsigned long long> ids = {3, 1, 2};
    m_handler.SaveProgramInfoByServiceID(ids);

    std::vector<FakeTvsProgramQuery> queries = FakeTvs::ProgramQueries();
    ASSERT_EQ(queries.size(), 3u);
    for (size_t i = 0; i < queries.size(); ++i) {
        EXPECT_EQ(queries[i].serviceId, std::vector<unsigned long long>({3, 1, 2})[i]);
        EXPECT_EQ(queries[i].startTime, 1700000000u);
        EXPECT_EQ(queries[i].duration, 86400u);
    }
    EXPECT_EQ(FakeTvs::Calls().back(), "Destroy(IServiceGuide)");
}

TEST_F(ProgramExportTest, RowsInEventOrderAndEveryEventFreed)
{
    FakeTvsEvent none;
    none.null = true;
    none.eventId = 2;
    FakeTvs::SetGuide(10, {{Event(9, 1700003600, u"Late"), Event(1, 1700000000, u"News"), none}});
    std::list<unsigned long long> ids = {10};
    m_handler.SaveProgramInfoByServiceID(ids);

    std::vector<KelvoUtilProgramData> rows = RecordedDb::RfRows();
    ASSERT_EQ(rows.size(), 2u);
    EXPECT_EQ(rows[0].ServiceId(), 10u);
    EXPECT_EQ(rows[0].EventId(), 1);
    EXPECT_EQ(rows[0].Starttime(), 1700000000u);
    EXPECT_EQ(rows[0].Title(), "News");
    EXPECT_EQ(rows[0].Language(), "eng");
    EXPECT_EQ(rows[1].EventId(), 9);
    EXPECT_EQ(rows[1].Title(), "Late");
    EXPECT_TRUE(FakeDlog::Contains("> serviceId:10 , RF Programs size : 3 "));
    EXPECT_EQ(FakeTvs::LiveProgramData(), 0);
}

struct EmptyGuideCase {
    const char *name;
    int count;
    bool withEvent;
};

class ProgramExportEmptyGuide : public ProgramExportTest, public ::testing::WithParamInterface<EmptyGuideCase> {};

TEST_P(ProgramExportEmptyGuide, LogsSizeZeroAndInsertsNothing)
{
    FakeTvsGuide guide;
    if (GetParam().withEvent)
        guide.events.push_back(Event(1, 1700000000, u"Ghost"));
    guide.count = GetParam().count;
    FakeTvs::SetGuide(77, guide);
    std::list<unsigned long long> ids = {77};
    m_handler.SaveProgramInfoByServiceID(ids);

    EXPECT_THAT(RecordedDb::RfRows(), IsEmpty());
    EXPECT_TRUE(FakeDlog::Contains("> serviceId:77 , RF Programs size : 0"));
    EXPECT_EQ(FakeTvs::LiveProgramData(), 0);
}

INSTANTIATE_TEST_SUITE_P(Guides, ProgramExportEmptyGuide,
                         ::testing::Values(EmptyGuideCase{"CountZero", 0, true},
                                           EmptyGuideCase{"CountNegative", -1, true},
                                           EmptyGuideCase{"PositiveCountEmptyMap", 4, false}),
                         [](const ::testing::TestParamInfo<EmptyGuideCase> &info) {
                             return std::string(info.param.name);
                         });

}  // namespace

// ---- metadata half, through the real proxies over a scripted daemon -------------------------

namespace {
class MetaExportTest : public ProgramExportTest {
protected:
    void SetUp() override
    {
        ProgramExportTest::SetUp();
        FakeCall::Reset();
    }
};

Json::Value ProgramJson(const std::string &sourceId, const std::string &programId, const std::string &title)
{
    FCRemoteProgram program;
    program.m_programSourceId = sourceId;
    program.m_programId = programId;
    program.m_title = title;
    program.m_lang = "eng";
    program.m_utcStartTime = 1700000000;
    program.m_duration = 3600;
    Json::Value value;
    FCRemoteProgram::ToJson(program, value);
    return value;
}

std::string Text(const Json::Value &value)
{
    Json::StreamWriterBuilder builder;
    builder["indentation"] = "";
    return Json::writeString(builder, value);
}

Json::Value Parse(const std::string &text)
{
    Json::Value value;
    Json::CharReaderBuilder builder;
    std::unique_ptr<Json::CharReader> reader(builder.newCharReader());
    reader->parse(text.data(), text.data() + text.size(), &value, nullptr);
    return value;
}

TEST_F(MetaExportTest, OneRowPerProgrammeUnderTheMatchedServiceOrAllOnes)
{
    Json::Value ids;
    ids["ret"] = true;
    ids["sourceIDArray"].append("S2");
    ids["sourceIDArray"].append("S1");
    FakeCall::Script("GetFullProgramSourceIdList", FakeCall::Answer::Text(Text(ids)));

    Json::Value map;
    map["ret"] = true;
    Json::Value s2;
    s2["program_source_id"] = "S2";
    s2["program_array"].append(ProgramJson("S2", "P3", "Third"));
    Json::Value s1;
    s1["program_source_id"] = "S1";
    s1["program_array"].append(ProgramJson("S1", "P1", "First"));
    s1["program_array"].append(ProgramJson("S1", "P2", "Second"));
    map["out_mapProgramWithSourceID"].append(s2);
    map["out_mapProgramWithSourceID"].append(s1);
    FakeCall::Script("GetProgramMap", FakeCall::Answer::Text(Text(map)));

    // Sources are looked up in ascending order: S1 is known, S2 is not.
    FakeCall::ScriptOnce("GetTCServiceIdByProgramSourceID",
                         FakeCall::Answer::Text("{\"ret\":true,\"TCServiceId\":\"1001\"}"));
    FakeCall::ScriptOnce("GetTCServiceIdByProgramSourceID", FakeCall::Answer::Text("{\"ret\":false}"));

    m_handler.BackupProgramDataOfMeta();

    std::vector<KelvoUtilProgramData> rows = RecordedDb::MetaRows();
    ASSERT_EQ(rows.size(), 3u);
    EXPECT_EQ(rows[0].ServiceId(), 1001u);
    EXPECT_EQ(rows[0].MetaProgramId(), "P1");
    EXPECT_EQ(rows[1].MetaProgramId(), "P2");
    EXPECT_EQ(rows[2].ServiceId(), 18446744073709551615ull);
    EXPECT_EQ(rows[2].ProgramSourceId(), "S2");

    Json::Value request = Parse(FakeCall::Arguments("GetProgramMap").at(0));
    EXPECT_EQ(request["activityID"].asInt(), 0);
    EXPECT_EQ(request["utc start time"].asInt(), 1700000000);
    EXPECT_EQ(request["duration"].asInt(), 86400);
    ASSERT_EQ(request["sourceIDArray"].size(), 2u);
    EXPECT_EQ(request["sourceIDArray"][0].asString(), "S2");

    std::vector<std::string> lookups = FakeCall::Arguments("GetTCServiceIdByProgramSourceID");
    ASSERT_EQ(lookups.size(), 2u);
    EXPECT_EQ(Parse(lookups[0])["program source id"].asString(), "S1");
    EXPECT_EQ(Parse(lookups[1])["program source id"].asString(), "S2");

    EXPECT_THAT(UtilLog(), ElementsAre("Start to Backup ProgramData of Meta", "UTC Current Time = 1700000000",
                                       "source Id size:2", "Meta Programs by source Id size : 2 ",
                                       "source Id : S1 , tvsServiceId:1001",
                                       "source Id : S2 , tvsServiceId:18446744073709551615",
                                       "End to Backup ProgramData of Meta"));
}

TEST_F(MetaExportTest, NoDaemonWritesNoRows)
{
    m_handler.BackupProgramDataOfMeta();
    EXPECT_THAT(RecordedDb::MetaRows(), IsEmpty());
    EXPECT_TRUE(FakeDlog::Contains("> source Id size:0"));
    EXPECT_TRUE(FakeDlog::Contains("> Meta Programs by source Id size : 0 "));
    EXPECT_EQ(FakeCall::Outstanding(), 0);
}
}  // namespace
