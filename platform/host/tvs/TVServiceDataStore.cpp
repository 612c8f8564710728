#include "TVServiceDataStore.h"

#include <sqlite3.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>

#include "TVServiceAPI.h"

namespace {
const char *const kServiceSchema =
    "CREATE TABLE service("
    "row INTEGER PRIMARY KEY, name TEXT, service_type INTEGER, source INTEGER, onid INTEGER, "
    "tsid INTEGER, program_number INTEGER, rf INTEGER, service_id INTEGER, major INTEGER, "
    "minor INTEGER, chmap_index INTEGER, package_id BLOB, extra_data BLOB);";

const char *const kGuideSchema =
    "CREATE TABLE event("
    "service_id INTEGER, event_id INTEGER, start_time INTEGER, duration INTEGER, language TEXT, "
    "title TEXT, extended_text TEXT, PRIMARY KEY(service_id, event_id));"
    "CREATE INDEX event_window ON event(service_id, start_time);";

// Closes the connection (and finalizes the statement) on every way out of a function.
struct Connection {
    sqlite3 *db = nullptr;
    sqlite3_stmt *stmt = nullptr;
    ~Connection()
    {
        sqlite3_finalize(stmt);
        sqlite3_close(db);
    }
};

// The guide is read once per service, thousands of times in a dump: each thread keeps the
// guide database open with its query prepared, as long as the path names the same file. A file
// put in its place (a restore, a new TV) is opened afresh; a write to the same file SQLite itself
// sees.
class EventReader {
public:
    ~EventReader() { m_Close(); }

    sqlite3_stmt *For(const std::string &path)
    {
        struct stat now {};
        if (stat(path.c_str(), &now) != 0) {
            m_Close();
            return nullptr;
        }
        if (m_stmt != nullptr && path == m_path && now.st_dev == m_file.st_dev && now.st_ino == m_file.st_ino &&
            now.st_mtim.tv_sec == m_file.st_mtim.tv_sec && now.st_mtim.tv_nsec == m_file.st_mtim.tv_nsec) {
            sqlite3_reset(m_stmt);
            sqlite3_clear_bindings(m_stmt);
            return m_stmt;
        }
        m_Close();
        return m_Open(path, now) ? m_stmt : nullptr;
    }

    // After a failed read, the next one starts from a fresh connection.
    void Forget() { m_Close(); }

private:
    bool m_Open(const std::string &path, const struct stat &file);
    void m_Close()
    {
        sqlite3_finalize(m_stmt);
        sqlite3_close(m_db);
        m_stmt = nullptr;
        m_db = nullptr;
        m_path.clear();
    }

    sqlite3 *m_db = nullptr;
    sqlite3_stmt *m_stmt = nullptr;
    std::string m_path;
    struct stat m_file {};
};

thread_local EventReader t_eventReader;

std::string ColumnText(sqlite3_stmt *stmt, int column)
{
    const unsigned char *text = sqlite3_column_text(stmt, column);
    return text ? reinterpret_cast<const char *>(text) : std::string();
}
}  // namespace

const std::vector<std::pair<int, const char *>> &TCServiceDataStore::Tags()
{
    static const std::vector<std::pair<int, const char *>> tags = {
        {1, "service_type"}, {2, "source"},      {3, "onid"},   {4, "tsid"},   {5, "program_number"},
        {9, "rf"},           {12, "service_id"}, {13, "major"}, {14, "minor"}, {17, "chmap_index"},
    };
    return tags;
}

const std::vector<std::pair<int, const char *>> &TCServiceDataStore::TextTags()
{
    static const std::vector<std::pair<int, const char *>> tags = {{179, "package_id"}, {180, "extra_data"}};
    return tags;
}

const char *TCServiceDataStore::ColumnOfTextTag(int tag)
{
    for (const auto &t : TextTags())
        if (t.first == tag)
            return t.second;
    return nullptr;
}

const char *TCServiceDataStore::ColumnOfTag(int tag)
{
    for (const auto &t : Tags())
        if (t.first == tag)
            return t.second;
    return nullptr;
}

std::string TCServiceDataStore::FolderOf(const std::string &path)
{
    size_t slash = path.find_last_of('/');
    return slash == std::string::npos ? std::string(".") : path.substr(0, slash);
}

bool TCServiceDataStore::MakeFolders(const std::string &path)
{
    for (size_t pos = 1; pos <= path.size(); ++pos) {
        if (pos != path.size() && path[pos] != '/')
            continue;
        std::string prefix = path.substr(0, pos);
        if (mkdir(prefix.c_str(), 0755) != 0 && errno != EEXIST)
            return false;
    }
    return true;
}

sqlite3 *TCServiceDataStore::m_Open(const std::string &path, bool readOnly)
{
    sqlite3 *db = nullptr;
    int flags = readOnly ? SQLITE_OPEN_READONLY : (SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE);
    if (sqlite3_open_v2(path.c_str(), &db, flags, nullptr) != SQLITE_OK) {
        TCApiPrintMessage("[TVS] cannot open %s: %s", path.c_str(), db ? sqlite3_errmsg(db) : "out of memory");
        sqlite3_close(db);
        return nullptr;
    }
    sqlite3_busy_timeout(db, 2000);
    return db;
}

bool TCServiceDataStore::m_Exec(sqlite3 *db, const char *sql)
{
    char *error = nullptr;
    if (sqlite3_exec(db, sql, nullptr, nullptr, &error) == SQLITE_OK)
        return true;
    TCApiPrintMessage("[TVS] %s: %s", sql, error ? error : "?");
    sqlite3_free(error);
    return false;
}

bool TCServiceDataStore::m_CreateFresh(const std::string &path, const char *schema, sqlite3 **db)
{
    if (!MakeFolders(FolderOf(path)))
        return false;
    if (unlink(path.c_str()) != 0 && errno != ENOENT)
        return false;
    *db = m_Open(path, false);
    return *db != nullptr && m_Exec(*db, schema);
}

bool TCServiceDataStore::WriteServices(const std::string &path, const std::vector<TCStoredService> &services)
{
    Connection c;
    if (!m_CreateFresh(path, kServiceSchema, &c.db))
        return false;
    std::string sql = "INSERT INTO service(name";
    std::string values = "?";
    for (const auto &t : Tags()) {
        sql += std::string(", ") + t.second;
        values += ", ?";
    }
    for (const auto &t : TextTags()) {
        sql += std::string(", ") + t.second;
        values += ", ?";
    }
    sql += ") VALUES (" + values + ")";
    if (!m_Exec(c.db, "BEGIN") || sqlite3_prepare_v2(c.db, sql.c_str(), -1, &c.stmt, nullptr) != SQLITE_OK)
        return false;
    for (const auto &service : services) {
        sqlite3_reset(c.stmt);
        sqlite3_bind_text(c.stmt, 1, service.name.c_str(), -1, SQLITE_TRANSIENT);
        int column = 2;
        for (const auto &t : Tags()) {
            auto it = service.tags.find(t.first);
            if (it == service.tags.end())
                sqlite3_bind_null(c.stmt, column);
            else
                sqlite3_bind_int64(c.stmt, column, it->second);
            ++column;
        }
        for (const auto &t : TextTags()) {
            auto it = service.texts.find(t.first);
            if (it == service.texts.end())
                sqlite3_bind_null(c.stmt, column);
            else
                sqlite3_bind_blob(c.stmt, column, it->second.data(), static_cast<int>(it->second.size()),
                                  SQLITE_TRANSIENT);
            ++column;
        }
        if (sqlite3_step(c.stmt) != SQLITE_DONE)
            return false;
    }
    return m_Exec(c.db, "COMMIT");
}

bool TCServiceDataStore::WriteGuide(const std::string &path, const std::vector<TCStoredEvent> &events)
{
    Connection c;
    if (!m_CreateFresh(path, kGuideSchema, &c.db))
        return false;
    const char *sql =
        "INSERT OR REPLACE INTO event(service_id, event_id, start_time, duration, language, title, extended_text) "
        "VALUES (?, ?, ?, ?, ?, ?, ?)";
    if (!m_Exec(c.db, "BEGIN") || sqlite3_prepare_v2(c.db, sql, -1, &c.stmt, nullptr) != SQLITE_OK)
        return false;
    for (const auto &e : events) {
        sqlite3_reset(c.stmt);
        sqlite3_bind_int64(c.stmt, 1, static_cast<long long>(e.serviceId));
        sqlite3_bind_int64(c.stmt, 2, e.eventId);
        sqlite3_bind_int64(c.stmt, 3, e.startTime);
        sqlite3_bind_int64(c.stmt, 4, e.duration);
        sqlite3_bind_text(c.stmt, 5, e.language.c_str(), -1, SQLITE_TRANSIENT);
        sqlite3_bind_text(c.stmt, 6, e.title.c_str(), -1, SQLITE_TRANSIENT);
        sqlite3_bind_text(c.stmt, 7, e.extendedText.c_str(), -1, SQLITE_TRANSIENT);
        if (sqlite3_step(c.stmt) != SQLITE_DONE)
            return false;
    }
    return m_Exec(c.db, "COMMIT");
}

bool TCServiceDataStore::ReadServices(const std::string &path, std::vector<TCStoredService> &out)
{
    Connection c;
    c.db = m_Open(path, true);
    if (c.db == nullptr)
        return false;
    std::string sql = "SELECT name";
    for (const auto &t : Tags())
        sql += std::string(", ") + t.second;
    for (const auto &t : TextTags())
        sql += std::string(", ") + t.second;
    sql += " FROM service ORDER BY row";
    if (sqlite3_prepare_v2(c.db, sql.c_str(), -1, &c.stmt, nullptr) != SQLITE_OK) {
        TCApiPrintMessage("[TVS] %s: %s", path.c_str(), sqlite3_errmsg(c.db));
        return false;
    }
    int rc;
    while ((rc = sqlite3_step(c.stmt)) == SQLITE_ROW) {
        TCStoredService service;
        service.name = ColumnText(c.stmt, 0);
        int column = 1;
        for (const auto &t : Tags()) {
            if (sqlite3_column_type(c.stmt, column) != SQLITE_NULL)
                service.tags[t.first] = sqlite3_column_int64(c.stmt, column);
            ++column;
        }
        for (const auto &t : TextTags()) {
            if (sqlite3_column_type(c.stmt, column) != SQLITE_NULL) {
                const void *bytes = sqlite3_column_blob(c.stmt, column);
                int size = sqlite3_column_bytes(c.stmt, column);
                service.texts[t.first] =
                    bytes ? std::string(static_cast<const char *>(bytes), static_cast<size_t>(size)) : std::string();
            }
            ++column;
        }
        out.push_back(std::move(service));
    }
    return rc == SQLITE_DONE;
}

bool TCServiceDataStore::ReadEvents(const std::string &path, unsigned long long serviceId, long long from, long long to,
                                    std::vector<TCStoredEvent> &out)
{
    sqlite3_stmt *stmt = t_eventReader.For(path);
    if (stmt == nullptr)
        return false;
    sqlite3_bind_int64(stmt, 1, static_cast<long long>(serviceId));
    sqlite3_bind_int64(stmt, 2, from);
    sqlite3_bind_int64(stmt, 3, to);
    int rc;
    while ((rc = sqlite3_step(stmt)) == SQLITE_ROW) {
        TCStoredEvent e;
        e.serviceId = serviceId;
        e.eventId = static_cast<unsigned int>(sqlite3_column_int64(stmt, 0));
        e.startTime = sqlite3_column_int64(stmt, 1);
        e.duration = sqlite3_column_int64(stmt, 2);
        e.language = ColumnText(stmt, 3);
        e.title = ColumnText(stmt, 4);
        e.extendedText = ColumnText(stmt, 5);
        out.push_back(std::move(e));
    }
    if (rc != SQLITE_DONE) {
        t_eventReader.Forget();
        return false;
    }
    // The read lock ends with the statement.
    sqlite3_reset(stmt);
    return true;
}

bool EventReader::m_Open(const std::string &path, const struct stat &file)
{
    m_db = TCServiceDataStore::OpenForReading(path);
    if (m_db == nullptr)
        return false;
    const char *sql = "SELECT event_id, start_time, duration, language, title, extended_text FROM event "
                      "WHERE service_id = ? AND start_time >= ? AND start_time < ? ORDER BY start_time";
    if (sqlite3_prepare_v2(m_db, sql, -1, &m_stmt, nullptr) != SQLITE_OK) {
        TCApiPrintMessage("[TVS] %s: %s", path.c_str(), sqlite3_errmsg(m_db));
        m_Close();
        return false;
    }
    m_path = path;
    m_file = file;
    return true;
}

bool TCServiceDataStore::WriteChannelMapDump(const std::string &servicePath, const std::string &dumpPath)
{
    Connection c;
    const char *schema =
        "CREATE TABLE chmap(chmap_index INTEGER PRIMARY KEY, service_id INTEGER, major INTEGER, minor INTEGER, "
        "service_type INTEGER, source INTEGER, rf INTEGER, name TEXT);";
    if (access(servicePath.c_str(), R_OK) != 0) {
        TCApiPrintMessage("[TVS] no service database at %s", servicePath.c_str());
        return false;
    }
    if (!m_CreateFresh(dumpPath, schema, &c.db))
        return false;
    if (sqlite3_prepare_v2(c.db, "ATTACH DATABASE ? AS tvs", -1, &c.stmt, nullptr) != SQLITE_OK)
        return false;
    sqlite3_bind_text(c.stmt, 1, servicePath.c_str(), -1, SQLITE_TRANSIENT);
    if (sqlite3_step(c.stmt) != SQLITE_DONE) {
        TCApiPrintMessage("[TVS] cannot attach %s: %s", servicePath.c_str(), sqlite3_errmsg(c.db));
        return false;
    }
    return m_Exec(
        c.db, "INSERT OR REPLACE INTO chmap SELECT chmap_index, service_id, major, minor, service_type, source, rf, "
              "name FROM tvs.service WHERE chmap_index IS NOT NULL AND chmap_index <> -1 ORDER BY chmap_index");
}

unsigned int TCServiceDataStore::LanguageCode(const std::string &language)
{
    unsigned int code = 0;
    for (size_t i = 0; i < 3; ++i)
        code = (code << 8) | (i < language.size() ? static_cast<unsigned char>(language[i]) : 0u);
    return code;
}

std::u16string TCServiceDataStore::Utf8ToUtf16(const std::string &text)
{
    std::u16string out;
    size_t i = 0;
    while (i < text.size()) {
        unsigned char lead = static_cast<unsigned char>(text[i]);
        int extra = lead < 0x80 ? 0 : (lead >> 5) == 0x6 ? 1 : (lead >> 4) == 0xE ? 2 : (lead >> 3) == 0x1E ? 3 : -1;
        char32_t cp = extra == 0 ? lead : extra == 1 ? (lead & 0x1F) : extra == 2 ? (lead & 0x0F) : (lead & 0x07);
        bool ok = extra >= 0 && i + static_cast<size_t>(extra) < text.size();
        for (int k = 1; ok && k <= extra; ++k) {
            unsigned char next = static_cast<unsigned char>(text[i + static_cast<size_t>(k)]);
            ok = (next & 0xC0) == 0x80;
            cp = (cp << 6) | (next & 0x3F);
        }
        static const char32_t minimum[] = {0, 0x80, 0x800, 0x10000};
        if (!ok || cp < minimum[extra] || cp > 0x10FFFF || (cp >= 0xD800 && cp <= 0xDFFF)) {
            out.push_back(u'\uFFFD');
            ++i;
            continue;
        }
        i += static_cast<size_t>(extra) + 1;
        if (cp >= 0x10000) {
            cp -= 0x10000;
            out.push_back(static_cast<char16_t>(0xD800 + (cp >> 10)));
            out.push_back(static_cast<char16_t>(0xDC00 + (cp & 0x3FF)));
        } else {
            out.push_back(static_cast<char16_t>(cp));
        }
    }
    return out;
}

std::string TCServiceDataStore::Utf8ToUtf16BEBytes(const std::string &text)
{
    std::string bytes;
    for (char16_t unit : Utf8ToUtf16(text)) {
        bytes += static_cast<char>(unit >> 8);
        bytes += static_cast<char>(unit & 0xff);
    }
    return bytes;
}
