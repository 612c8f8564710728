#include "dbQueryHelper.h"

#include "KelvoUtilLog.h"

namespace {

const char *const kColumnNames[] = {
    "serviceId", "eventId",  "starttime", "duration",  "language",   "tsid",   "onid",
    "title",     "descript", "actId",     "metaSrcId", "metaProgId", "chName", "chNumber",
};
const int kColumnCount = static_cast<int>(sizeof(kColumnNames) / sizeof(kColumnNames[0]));

std::string Join(const std::list<std::string> &items)
{
    std::string text;
    bool first = true;
    for (const std::string &item : items) {
        if (!first) {
            text += ", ";
        }
        text += item;
        first = false;
    }
    return text;
}

}  // namespace

KelvoUtilDbQueryHelper::KelvoUtilDbQueryHelper() = default;

KelvoUtilDbQueryHelper::~KelvoUtilDbQueryHelper() = default;

void KelvoUtilDbQueryHelper::SetTableName(std::string name)
{
    m_tableName = std::move(name);
}

void KelvoUtilDbQueryHelper::AddField(const std::string &name, const std::string &type)
{
    m_fields.emplace_back(name, type);
}

std::string KelvoUtilDbQueryHelper::GetCreateTableQuery()
{
    std::string query = "CREATE TABLE IF NOT EXISTS " + m_tableName + "(";
    for (size_t i = 0; i < m_fields.size(); ++i) {
        if (i > 0) {
            query += ", ";
        }
        query += m_fields[i].first + " " + m_fields[i].second;
    }
    query += ");";
    KELVO_UTIL_LOGD("query =%s", query.c_str());
    return query;
}

bool KelvoUtilDbQueryHelper::GetInsertQuery(std::string &out)
{
    if (m_columnNames.empty() || m_columnValues.empty()) {
        return false;
    }
    std::string query =
        "INSERT OR IGNORE INTO " + m_tableName + " (" + Join(m_columnNames) + ") VALUES (" + Join(m_columnValues) + ")";
    KELVO_UTIL_LOGD("query: %s", query.c_str());
    out = std::move(query);
    return true;
}

std::string KelvoUtilDbQueryHelper::GetColumnName(EColumn column)
{
    const int index = static_cast<int>(column);
    if (index < 0 || index >= kColumnCount) {
        return std::string();
    }
    return kColumnNames[index];
}

void KelvoUtilDbQueryHelper::SetColumnValue(EColumn column, unsigned long long value)
{
    if (column != COLUMN_SERVICE_ID) {
        KELVO_UTIL_LOG("wrong data type(unsigned long long) column:%s", GetColumnName(column).c_str());
        return;
    }
    m_Append(column, std::to_string(value));
}

void KelvoUtilDbQueryHelper::SetColumnValue(EColumn column, unsigned long value)
{
    if (column != COLUMN_START_TIME && column != COLUMN_DURATION) {
        KELVO_UTIL_LOG("wrong data type(unsigned long) column:%s", GetColumnName(column).c_str());
        return;
    }
    m_Append(column, std::to_string(value));
}

void KelvoUtilDbQueryHelper::SetColumnValue(EColumn column, unsigned short value)
{
    if (column != COLUMN_EVENT_ID && column != COLUMN_TSID && column != COLUMN_ONID && column != COLUMN_ACTIVITY_ID) {
        KELVO_UTIL_LOG("wrong data type(unsigned short) column:%s", GetColumnName(column).c_str());
        return;
    }
    m_Append(column, std::to_string(static_cast<int>(value)));
}

void KelvoUtilDbQueryHelper::SetColumnValue(EColumn column, std::string value)
{
    switch (column) {
    case COLUMN_LANGUAGE:
    case COLUMN_TITLE:
    case COLUMN_DESCRIPTION:
    case COLUMN_META_SOURCE_ID:
    case COLUMN_META_PROGRAM_ID:
    case COLUMN_CHANNEL_NAME:
    case COLUMN_CHANNEL_NUMBER:
        m_Append(column, ReplaceApostropheForQuery(std::move(value)));
        return;
    default:
        KELVO_UTIL_LOG("wrong data type(std::string) column:%s", GetColumnName(column).c_str());
        return;
    }
}

std::string KelvoUtilDbQueryHelper::ReplaceApostropheForQuery(std::string text)
{
    // The stored text holds no apostrophe at all, so it can never end the quoted literal early.
    for (size_t pos = text.find('\''); pos != std::string::npos; pos = text.find('\'', pos + 1)) {
        text[pos] = '"';
    }
    return "'" + text + "'";
}

void KelvoUtilDbQueryHelper::Clear()
{
    m_tableName.clear();
    m_fields.clear();
    m_columnNames.clear();
    m_columnValues.clear();
}

void KelvoUtilDbQueryHelper::m_Append(EColumn column, std::string valueText)
{
    m_columnNames.push_back(GetColumnName(column));
    m_columnValues.push_back(std::move(valueText));
}
