#include "dbQueryHelper.h"

#include "KelvoUtilLog.h"

#include <cstring>

namespace {

const char *const kColumnNames[] = {
    "serviceId", "eventId",  "starttime", "duration",  "language",   "tsid",   "onid",
    "title",     "descript", "actId",     "metaSrcId", "metaProgId", "chName", "chNumber",
};
const int kColumnCount = static_cast<int>(sizeof(kColumnNames) / sizeof(kColumnNames[0]));

size_t JoinedSize(const std::list<std::string> &items)
{
    size_t size = 0;
    for (const std::string &item : items) {
        size += item.size() + 2;
    }
    return size;
}

void AppendJoined(std::string &text, const std::list<std::string> &items)
{
    bool first = true;
    for (const std::string &item : items) {
        if (!first) {
            text += ", ";
        }
        text += item;
        first = false;
    }
}

// Statement texts go through SQLite's formatter, whose directives read, as this guard reads them:
//
//   directive  = '%' flags [width] [precision] [length] conversion
//   flags      = { '-' | '+' | ' ' | '#' | '!' | '0' | ',' }     in any order, repeated
//   width      = '*' | digit { digit }                            '*' reads an int argument
//   precision  = '.' [ '*' | digit { digit } ]                    '.*' reads one too
//   length     = 'l' | 'll'
//   conversion = one character
//
// A width starts at a digit 1-9, since a '0' before it is a flag. Conversions that read an
// argument: d i u x X o c p n q Q w s z f e E g G r, and T S, which the library keeps for its
// own use (a public format stops at them). '%' reads none and prints a '%' padded to the width.
// Any other character, the end of the text included, stops the formatter: nothing after it
// is printed. There is nothing else: no positional "%1$s", no 'h', 'j', 'L' or 't' length,
// no flag after a width, no '\'' flag.
//
// The guard removes:
// - a directive with an argument-reading conversion, whole;
// - a '%' conversion with a '*' or a width of kMaxPercentWidthDigits digits or more, whole: the
//   one would read an argument, the other makes the formatter build a text of up to a gigabyte;
// - before a character that is no conversion, a '%' with a '*' in it up to that character: the
//   formatter would read the argument and then stop; the character itself stays.
// Nothing else is touched: "%%", a padded '%', a '%' that the formatter stops at and a lone '%'
// at the end are left for it to treat as it always does. No directive holds a quote, so a quote
// is never removed. The formatter reads the text up to its first NUL; so does the guard.
const size_t kMaxPercentWidthDigits = 5;

bool IsDigit(char c)
{
    return c >= '0' && c <= '9';
}

bool ReadsArgument(char conversion)
{
    return conversion != '\0' && std::strchr("diuxXocpnqQwszfeEgGrTS", conversion) != nullptr;
}

}  // namespace

std::string KelvoUtilStatementGuard::Apply(const std::string &statement)
{
    const char *text = statement.c_str();
    const char *first = std::strchr(text, '%');
    if (first == nullptr) {
        return text;  // the common case: nothing for the formatter to read
    }
    std::string safe(text, first);
    safe.reserve(statement.size());
    size_t i = static_cast<size_t>(first - text);
    while (text[i] != '\0') {
        if (text[i] != '%') {
            const size_t plain = std::strcspn(text + i, "%");
            safe.append(text + i, plain);
            i += plain;
            continue;
        }
        size_t j = i + 1;
        while (text[j] != '\0' && std::strchr("-+ #!0,", text[j]) != nullptr) {
            ++j;
        }
        bool starred = false;
        size_t widthDigits = 0;
        if (text[j] == '*') {
            starred = true;
            ++j;
        } else {
            for (; IsDigit(text[j]); ++j) {
                ++widthDigits;
            }
        }
        if (text[j] == '.') {
            ++j;
            if (text[j] == '*') {
                starred = true;
                ++j;
            } else {
                while (IsDigit(text[j])) {
                    ++j;
                }
            }
        }
        if (text[j] == 'l') {
            j += text[j + 1] == 'l' ? 2 : 1;
        }
        const char conversion = text[j];
        if (conversion == '%' && !starred && widthDigits < kMaxPercentWidthDigits) {
            safe.append(text + i, j + 1 - i);
            i = j + 1;
        } else if (ReadsArgument(conversion) || conversion == '%') {
            i = j + 1;
        } else if (starred) {
            i = j;  // the formatter stops at text[j]: it stays, the argument read goes
        } else {
            safe.append(text + i, j - i);
            i = j;
        }
    }
    return safe;
}

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
    // Built in one buffer: a statement is made for every row of a dump.
    static const char kInsert[] = "INSERT OR IGNORE INTO ";
    static const char kValues[] = ") VALUES (";
    std::string query;
    query.reserve(sizeof kInsert + m_tableName.size() + 2 + JoinedSize(m_columnNames) + sizeof kValues +
                  JoinedSize(m_columnValues) + 1);
    query.append(kInsert).append(m_tableName).append(" (");
    AppendJoined(query, m_columnNames);
    query.append(kValues);
    AppendJoined(query, m_columnValues);
    query += ')';
    KELVO_UTIL_LOG("query: %s", query.c_str());
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
    std::string quoted;
    quoted.reserve(text.size() + 2);
    quoted.append(1, '\'').append(text).append(1, '\'');
    return quoted;
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
