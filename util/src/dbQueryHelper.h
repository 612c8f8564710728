// Builds the statement texts of the programme-info database: the CREATE of a table from its
// fields, and one INSERT from a row of typed column values.
#ifndef KELVO_UTIL_DB_QUERY_HELPER_H
#define KELVO_UTIL_DB_QUERY_HELPER_H

#include <list>
#include <string>
#include <utility>
#include <vector>

class KelvoUtilDbQueryHelper {
public:
    enum EColumn {
        COLUMN_SERVICE_ID,
        COLUMN_EVENT_ID,
        COLUMN_START_TIME,
        COLUMN_DURATION,
        COLUMN_LANGUAGE,
        COLUMN_TSID,
        COLUMN_ONID,
        COLUMN_TITLE,
        COLUMN_DESCRIPTION,
        COLUMN_ACTIVITY_ID,
        COLUMN_META_SOURCE_ID,
        COLUMN_META_PROGRAM_ID,
        COLUMN_CHANNEL_NAME,
        COLUMN_CHANNEL_NUMBER
    };

    KelvoUtilDbQueryHelper();
    virtual ~KelvoUtilDbQueryHelper();

    void SetTableName(std::string name);
    void AddField(const std::string &name, const std::string &type);
    std::string GetCreateTableQuery();
    bool GetInsertQuery(std::string &out);
    std::string GetColumnName(EColumn column);

    void SetColumnValue(EColumn column, unsigned long long value);
    void SetColumnValue(EColumn column, unsigned long value);
    void SetColumnValue(EColumn column, unsigned short value);
    void SetColumnValue(EColumn column, std::string value);

    std::string ReplaceApostropheForQuery(std::string text);
    void Clear();

private:
    void m_Append(EColumn column, std::string valueText);

    std::vector<std::pair<std::string, std::string>> m_fields;
    std::string m_tableName;
    std::list<std::string> m_columnNames;
    std::list<std::string> m_columnValues;
};

// Makes a statement text safe to hand to sqlite3_mprintf as its format with no arguments: titles
// and descriptions are broadcast or server text, and a directive in them must never make the
// formatter read an argument that is not there.
class KelvoUtilStatementGuard {
public:
    // The text with every argument-reading directive taken out; everything else is unchanged.
    static std::string Apply(const std::string &statement);
};

#endif
