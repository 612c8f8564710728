#include <gtest/gtest.h>

#include <functional>

#include "FakeDlog.h"
#include "dbQueryHelper.h"
#include "dlog.h"

namespace {

using Q = KelvoUtilDbQueryHelper;

enum class Kind { U64, U32, U16, Text };

struct ColumnCase {
    Q::EColumn column;
    const char *name;
    Kind accepted;
};

const ColumnCase kColumns[] = {
    {Q::COLUMN_SERVICE_ID, "serviceId", Kind::U64},      {Q::COLUMN_EVENT_ID, "eventId", Kind::U16},
    {Q::COLUMN_START_TIME, "starttime", Kind::U32},      {Q::COLUMN_DURATION, "duration", Kind::U32},
    {Q::COLUMN_LANGUAGE, "language", Kind::Text},        {Q::COLUMN_TSID, "tsid", Kind::U16},
    {Q::COLUMN_ONID, "onid", Kind::U16},                 {Q::COLUMN_TITLE, "title", Kind::Text},
    {Q::COLUMN_DESCRIPTION, "descript", Kind::Text},     {Q::COLUMN_ACTIVITY_ID, "actId", Kind::U16},
    {Q::COLUMN_META_SOURCE_ID, "metaSrcId", Kind::Text}, {Q::COLUMN_META_PROGRAM_ID, "metaProgId", Kind::Text},
    {Q::COLUMN_CHANNEL_NAME, "chName", Kind::Text},      {Q::COLUMN_CHANNEL_NUMBER, "chNumber", Kind::Text},
};

struct Overload {
    Kind kind;
    const char *typeName;  // as the rejection message names it
    const char *valueText;  // as the INSERT carries it
    std::function<void(Q &, Q::EColumn)> set;
};

const Overload kOverloads[] = {
    {Kind::U64, "unsigned long long", "18446744073709551615",
     [](Q &q, Q::EColumn c) { q.SetColumnValue(c, 18446744073709551615ULL); }},
    {Kind::U32, "unsigned long", "4294967295", [](Q &q, Q::EColumn c) { q.SetColumnValue(c, 4294967295UL); }},
    {Kind::U16, "unsigned short", "65535",
     [](Q &q, Q::EColumn c) { q.SetColumnValue(c, static_cast<unsigned short>(65535)); }},
    {Kind::Text, "std::string", "'it\"s'", [](Q &q, Q::EColumn c) { q.SetColumnValue(c, std::string("it's")); }},
};

std::string InsertOf(Q &q)
{
    std::string out;
    return q.GetInsertQuery(out) ? out : "<none>";
}

TEST(DbQueryHelper, ColumnNamesFollowTheEnumeration)
{
    Q q;
    for (size_t i = 0; i < sizeof(kColumns) / sizeof(kColumns[0]); ++i) {
        EXPECT_EQ(static_cast<size_t>(kColumns[i].column), i);
        EXPECT_EQ(q.GetColumnName(kColumns[i].column), kColumns[i].name);
    }
    EXPECT_EQ(q.GetColumnName(static_cast<Q::EColumn>(14)), "");
    EXPECT_EQ(q.GetColumnName(static_cast<Q::EColumn>(15)), "");
}

// Every column against every value type: the right one lands in the row with its value text,
// each wrong one is logged with the type and the column and leaves the row untouched.
TEST(DbQueryHelper, SetColumnValueAcceptsOnlyTheColumnsType)
{
    for (const ColumnCase &column : kColumns) {
        for (const Overload &overload : kOverloads) {
            SCOPED_TRACE(std::string(column.name) + " <- " + overload.typeName);
            FakeDlog::Clear();
            Q q;
            q.SetTableName("t");
            overload.set(q, column.column);
            if (overload.kind == column.accepted) {
                EXPECT_EQ(InsertOf(q), std::string("INSERT OR IGNORE INTO t (") + column.name + ") VALUES (" +
                                           overload.valueText + ")");
                EXPECT_TRUE(FakeDlog::Lines().size() == 1u) << "only the query line";
            } else {
                EXPECT_EQ(InsertOf(q), "<none>");
                const std::string expected =
                    std::string("wrong data type(") + overload.typeName + ") column:" + column.name;
                ASSERT_EQ(FakeDlog::Messages("kelvo-util"), std::vector<std::string>{expected});
                EXPECT_EQ(FakeDlog::Lines()[0].prio, DLOG_WARN);
            }
        }
    }
}

TEST(DbQueryHelper, CreateTextJoinsFieldsInOrder)
{
    Q q;
    EXPECT_EQ(q.GetCreateTableQuery(), "CREATE TABLE IF NOT EXISTS ();");
    q.SetTableName("programRF");
    EXPECT_EQ(q.GetCreateTableQuery(), "CREATE TABLE IF NOT EXISTS programRF();");
    q.AddField("serviceId", "integer");
    EXPECT_EQ(q.GetCreateTableQuery(), "CREATE TABLE IF NOT EXISTS programRF(serviceId integer);");
    q.AddField("language", "text");
    q.AddField("language", "text");
    FakeDlog::Clear();
    const std::string text = "CREATE TABLE IF NOT EXISTS programRF(serviceId integer, language text, language text);";
    EXPECT_EQ(q.GetCreateTableQuery(), text);
    ASSERT_EQ(FakeDlog::Lines().size(), 1u);
    EXPECT_EQ(FakeDlog::Lines()[0].prio, DLOG_DEBUG);
    EXPECT_EQ(FakeDlog::Messages("kelvo-util"), std::vector<std::string>{"query =" + text});
}

TEST(DbQueryHelper, InsertTextKeepsTheOrderValuesWereSet)
{
    Q q;
    std::string out = "untouched";
    EXPECT_FALSE(q.GetInsertQuery(out));
    EXPECT_EQ(out, "untouched");

    q.SetTableName("programMETA");
    q.SetColumnValue(Q::COLUMN_TITLE, std::string("News"));
    q.SetColumnValue(Q::COLUMN_SERVICE_ID, 7ULL);
    q.SetColumnValue(Q::COLUMN_EVENT_ID, static_cast<unsigned short>(0));
    q.SetColumnValue(Q::COLUMN_TITLE, std::string(""));
    FakeDlog::Clear();
    ASSERT_TRUE(q.GetInsertQuery(out));
    const std::string text = "INSERT OR IGNORE INTO programMETA (title, serviceId, eventId, title) VALUES ('News', 7, 0, '')";
    EXPECT_EQ(out, text);
    EXPECT_EQ(FakeDlog::Messages("kelvo-util"), std::vector<std::string>{"query: " + text});
}

TEST(DbQueryHelper, ApostrophesBecomeDoubleQuotesInsideSingleQuotes)
{
    const struct {
        const char *in;
        const char *out;
    } cases[] = {
        {"", "''"},
        {"News", "'News'"},
        {"Bob's", "'Bob\"s'"},
        {"'", "'\"'"},
        {"''", "'\"\"'"},
        {"'a'b''c'", "'\"a\"b\"\"c\"'"},
        {"100% \"quoted\"; --", "'100% \"quoted\"; --'"},
    };
    Q q;
    for (const auto &c : cases) {
        EXPECT_EQ(q.ReplaceApostropheForQuery(c.in), c.out) << c.in;
    }
}

TEST(DbQueryHelper, ClearLeavesNothingForTheNextTable)
{
    Q q;
    q.SetTableName("programRF");
    q.AddField("serviceId", "integer");
    q.SetColumnValue(Q::COLUMN_SERVICE_ID, 1ULL);
    q.Clear();
    std::string out = "untouched";
    EXPECT_FALSE(q.GetInsertQuery(out));
    EXPECT_EQ(out, "untouched");
    EXPECT_EQ(q.GetCreateTableQuery(), "CREATE TABLE IF NOT EXISTS ();");

    q.SetTableName("programMETA");
    q.AddField("actId", "integer");
    q.SetColumnValue(Q::COLUMN_ACTIVITY_ID, static_cast<unsigned short>(3));
    EXPECT_EQ(q.GetCreateTableQuery(), "CREATE TABLE IF NOT EXISTS programMETA(actId integer);");
    ASSERT_TRUE(q.GetInsertQuery(out));
    EXPECT_EQ(out, "INSERT OR IGNORE INTO programMETA (actId) VALUES (3)");
}

}  // namespace
