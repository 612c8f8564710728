// The programme-information export: the channel-list query, the guide of each service, and the
// metadata of the content daemon through the real proxies over a scripted daemon.
#include <json/json.h>

#include "FCElementData.h"
#include "FakeCall.h"
#include "UtilTestSupport.h"
#include "dataHandler.h"

using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {
class ProgramExportTest : public UtilTest {
protected:
    KelvoUtilDataHandler m_handler;
};

TEST_F(ProgramExportTest, ChannelListQueryAndServiceIdsInListOrder)
{
    // The empty record in the middle is handed out as a null pointer. Major, minor and type all
    // differ, so that a field read for another shows in the log.
    FakeTvs::SetServices(
        {{{12, 0x40000001}, {13, 7}, {14, 3}, {1, 1}}, {}, {{12, 0x40000002}, {13, 11}, {14, 4}, {1, 2}}});
    std::list<unsigned long long> ids = {99};
    m_handler.GetServiceIDFromChannelList(ids);

    EXPECT_THAT(ids, ElementsAre(99u, 0x40000001u, 0x40000002u));
    ASSERT_EQ(FakeTvs::Criteria().size(), 1u);
    const TCCriteriaHelper criteria = FakeTvs::Criteria()[0];
    std::vector<std::string> conditions;
    for (const TCCriteriaHelper::Condition &c : criteria.Conditions())
        conditions.push_back(std::to_string(c.field) + (c.negated ? " != " : " == ") + std::to_string(c.value));
    EXPECT_THAT(conditions, ElementsAre("17 != -1", "9 == 1"));
    EXPECT_THAT(criteria.FetchedFields(), ElementsAre(12, 13, 14, 1, 2));
    EXPECT_THAT(UtilLog(), ElementsAre("RF channels size : 3 ", "service Id: 1073741825 No:7-3 ,type:1",
                                       "service Id: 1073741826 No:11-4 ,type:2"));
}

struct GuideCase {
    const char *name;
    FakeTvsGuide guide;
    const char *logged;
    std::vector<int> rows;  // event ids of the rows written, in order
};

class ProgramExportGuide : public ProgramExportTest, public ::testing::WithParamInterface<GuideCase> {};

// Each service's guide is asked for from now for one day; 78 has none.
TEST_P(ProgramExportGuide, RowsInEventOrderOrSizeZero)
{
    FakeSystem::SetNow(0x100000000LL + 1700000000LL);  // only the low 32 bits reach the guide
    FakeTvs::SetGuide(77, GetParam().guide);
    std::list<unsigned long long> ids = {77, 78};
    m_handler.SaveProgramInfoByServiceID(ids);

    std::vector<int> rows;
    rows.reserve(RecordedDb::rows.size());
    for (const KelvoUtilProgramData &row : RecordedDb::rows)
        rows.push_back(row.EventId());
    EXPECT_EQ(rows, GetParam().rows);
    EXPECT_THAT(UtilLog(), ::testing::IsSupersetOf({GetParam().logged, "serviceId:78 , RF Programs size : 0"}));
    EXPECT_THAT(FakeTvs::Calls(),
                ElementsAre("FindProgramList(77, 1700000000, 86400)", "FindProgramList(78, 1700000000, 86400)"));
}

INSTANTIATE_TEST_SUITE_P(
    Guides, ProgramExportGuide,
    ::testing::Values(GuideCase{"CountZero", {{1}, 0}, "serviceId:77 , RF Programs size : 0", {}},
                      GuideCase{"CountNegative", {{1}, -1}, "serviceId:77 , RF Programs size : 0", {}},
                      GuideCase{"PositiveCountEmptyMap", {{}, 4}, "serviceId:77 , RF Programs size : 0", {}},
                      GuideCase{"NullEventSkipped", {{9, 1, -2}, {}}, "serviceId:77 , RF Programs size : 3 ", {1, 9}}),
    ByName());

Json::Value Source(const std::string &sourceId, std::vector<std::string> programIds)
{
    Json::Value source;
    source["program_source_id"] = sourceId;
    for (const std::string &id : programIds) {
        FCRemoteProgram program;
        program.m_programSourceId = sourceId;
        program.m_programId = id;
        Json::Value value;
        FCRemoteProgram::ToJson(program, value);
        source["program_array"].append(value);
    }
    return source;
}

TEST_F(ProgramExportTest, MetaRowsUnderTheMatchedServiceOrAllOnes)
{
    FakeCall::Script("GetFullProgramSourceIdList",
                     FakeCall::Answer::Text(R"({"ret":true,"sourceIDArray":["S2","S1"]})"));
    Json::Value map;
    map["ret"] = true;
    map["out_mapProgramWithSourceID"].append(Source("S2", {"P3"}));
    map["out_mapProgramWithSourceID"].append(Source("S1", {"P1", "P2"}));
    FakeCall::Script("GetProgramMap", FakeCall::Answer::Text(Json::writeString(Json::StreamWriterBuilder(), map)));
    // Sources are looked up in ascending order: S1 is known, S2 is not.
    FakeCall::ScriptOnce("GetTCServiceIdByProgramSourceID",
                         FakeCall::Answer::Text(R"({"ret":true,"TCServiceId":"1001"})"));
    FakeCall::ScriptOnce("GetTCServiceIdByProgramSourceID", FakeCall::Answer::Text(R"({"ret":false})"));

    m_handler.BackupProgramDataOfMeta();

    std::vector<std::string> rows;
    rows.reserve(RecordedDb::rows.size());
    for (const KelvoUtilProgramData &row : RecordedDb::rows)
        rows.push_back(std::to_string(row.ServiceId()) + " " + row.ProgramSourceId() + " " + row.MetaProgramId());
    EXPECT_THAT(rows, ElementsAre("1001 S1 P1", "1001 S1 P2", "18446744073709551615 S2 P3"));
    // The main activity, every source, from now for one day.
    EXPECT_THAT(FakeCall::Arguments("GetFullProgramSourceIdList"), ElementsAre(R"({"activityID":0})"));
    EXPECT_THAT(FakeCall::Arguments("GetProgramMap"),
                ElementsAre(R"({"activityID":0,"duration":86400,"genre id list":"","sourceIDArray":["S2","S1"],)"
                            R"("utc start time":1700000000})"));
    EXPECT_THAT(
        FakeCall::Arguments("GetTCServiceIdByProgramSourceID"),
        ElementsAre(R"({"activityID":0,"program source id":"S1"})", R"({"activityID":0,"program source id":"S2"})"));
    EXPECT_THAT(UtilLog(),
                ElementsAre("Start to Backup ProgramData of Meta", "UTC Current Time = 1700000000", "source Id size:2",
                            "Meta Programs by source Id size : 2 ", "source Id : S1 , tvsServiceId:1001",
                            "source Id : S2 , tvsServiceId:18446744073709551615", "End to Backup ProgramData of Meta"));
}

TEST_F(ProgramExportTest, NoDaemonWritesNoMetaRows)
{
    m_handler.BackupProgramDataOfMeta();
    EXPECT_THAT(RecordedDb::rows, IsEmpty());
    EXPECT_THAT(UtilLog(),
                ElementsAre("Start to Backup ProgramData of Meta", "UTC Current Time = 1700000000", "source Id size:0",
                            "Meta Programs by source Id size : 0 ", "End to Backup ProgramData of Meta"));
    EXPECT_EQ(FakeCall::Outstanding(), 0);
}
}  // namespace
