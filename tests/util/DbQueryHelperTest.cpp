// The statement builder: column names, the type check of values, create and insert texts, quoting.
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
    {Q::COLUMN_SERVICE_ID, "serviceId", Kind::U64},
    {Q::COLUMN_EVENT_ID, "eventId", Kind::U16},
    {Q::COLUMN_START_TIME, "starttime", Kind::U32},
    {Q::COLUMN_DURATION, "duration", Kind::U32},
    {Q::COLUMN_LANGUAGE, "language", Kind::Text},
    {Q::COLUMN_TSID, "tsid", Kind::U16},
    {Q::COLUMN_ONID, "onid", Kind::U16},
    {Q::COLUMN_TITLE, "title", Kind::Text},
    {Q::COLUMN_DESCRIPTION, "descript", Kind::Text},
    {Q::COLUMN_ACTIVITY_ID, "actId", Kind::U16},
    {Q::COLUMN_META_SOURCE_ID, "metaSrcId", Kind::Text},
    {Q::COLUMN_META_PROGRAM_ID, "metaProgId", Kind::Text},
    {Q::COLUMN_CHANNEL_NAME, "chName", Kind::Text},
    {Q::COLUMN_CHANNEL_NUMBER, "chNumber", Kind::Text},
};

struct Overload {
    Kind kind;
    const char *typeName;   // as the rejection message names it
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

// Every column against every value type: the right one lands in the row with its value text,
// each wrong one is logged with the type and the column and leaves the row untouched.
TEST(DbQueryHelper, ColumnNamesAndTheTypeCheckOfValues)
{
    for (const ColumnCase &column : kColumns) {
        EXPECT_EQ(Q().GetColumnName(column.column), column.name);
        EXPECT_EQ(static_cast<size_t>(column.column), static_cast<size_t>(&column - kColumns));
        for (const Overload &overload : kOverloads) {
            SCOPED_TRACE(std::string(column.name) + " <- " + overload.typeName);
            FakeDlog::Clear();
            Q q;
            std::string insert = "<none>";
            q.SetTableName("t");
            overload.set(q, column.column);
            const bool accepted = overload.kind == column.accepted;
            EXPECT_EQ(q.GetInsertQuery(insert), accepted);
            EXPECT_EQ(insert, accepted ? std::string("INSERT OR IGNORE INTO t (") + column.name + ") VALUES (" +
                                             overload.valueText + ")"
                                       : "<none>");
            EXPECT_EQ(FakeDlog::Lines().size(), 1u);
            if (!accepted) {
                EXPECT_EQ(FakeDlog::Messages("kelvo-util"),
                          std::vector<std::string>{std::string("wrong data type(") + overload.typeName +
                                                   ") column:" + column.name});
                EXPECT_EQ(FakeDlog::Lines()[0].prio, DLOG_WARN);
            }
        }
    }
    EXPECT_EQ(Q().GetColumnName(static_cast<Q::EColumn>(14)), "");
    EXPECT_EQ(Q().GetColumnName(static_cast<Q::EColumn>(15)), "");
}

// Fields and values keep their order, repeats included; each text is logged at debug priority.
// (Field lists and values of the real tables are read back from the file in DatabaseHelperTest.)
TEST(DbQueryHelper, CreateAndInsertTexts)
{
    Q q;
    EXPECT_EQ(q.GetCreateTableQuery(), "CREATE TABLE IF NOT EXISTS ();");
    q.SetTableName("programMETA");
    q.AddField("title", "text");
    q.AddField("title", "text");
    q.SetColumnValue(Q::COLUMN_TITLE, std::string("News"));
    q.SetColumnValue(Q::COLUMN_SERVICE_ID, 7ULL);
    q.SetColumnValue(Q::COLUMN_TITLE, std::string(""));
    FakeDlog::Clear();
    const std::string create = "CREATE TABLE IF NOT EXISTS programMETA(title text, title text);";
    const std::string insert = "INSERT OR IGNORE INTO programMETA (title, serviceId, title) VALUES ('News', 7, '')";
    std::string out;
    EXPECT_EQ(q.GetCreateTableQuery(), create);
    ASSERT_TRUE(q.GetInsertQuery(out));
    EXPECT_EQ(out, insert);
    EXPECT_EQ(FakeDlog::Messages("kelvo-util"), (std::vector<std::string>{"query =" + create, "query: " + insert}));
    EXPECT_EQ(FakeDlog::Lines()[0].prio, DLOG_DEBUG);
    EXPECT_EQ(FakeDlog::Lines()[1].prio, DLOG_WARN);
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
    for (const auto &c : cases)
        EXPECT_EQ(Q().ReplaceApostropheForQuery(c.in), c.out) << c.in;
}

}  // namespace
