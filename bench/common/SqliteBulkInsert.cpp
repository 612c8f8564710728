#include "SqliteBulkInsert.h"

#include <sqlite3.h>

#include <chrono>
#include <cstdio>

namespace {
const char *const kTables[] = {"programRF", "programMETA"};

std::vector<std::vector<KelvoBenchCell>> &Of(KelvoBenchRows &rows, int table)
{
    return table == 0 ? rows.rf : rows.meta;
}
const std::vector<std::vector<KelvoBenchCell>> &Of(const KelvoBenchRows &rows, int table)
{
    return table == 0 ? rows.rf : rows.meta;
}
}  // namespace

bool KelvoBenchSqlite::Read(const std::string &path, KelvoBenchRows &rows)
{
    sqlite3 *db = nullptr;
    bool ok = sqlite3_open_v2(path.c_str(), &db, SQLITE_OPEN_READONLY, nullptr) == SQLITE_OK;
    for (int table = 0; ok && table < 2; ++table) {
        sqlite3_stmt *stmt = nullptr;
        std::string sql = std::string("SELECT * FROM ") + kTables[table];
        ok = sqlite3_prepare_v2(db, sql.c_str(), -1, &stmt, nullptr) == SQLITE_OK && sqlite3_column_count(stmt) == 9;
        while (ok && sqlite3_step(stmt) == SQLITE_ROW) {
            std::vector<KelvoBenchCell> row;
            for (int c = 0; c < 9; ++c) {
                const unsigned char *text = sqlite3_column_text(stmt, c);
                row.push_back({sqlite3_column_type(stmt, c), sqlite3_column_int64(stmt, c),
                               sqlite3_column_double(stmt, c), text ? reinterpret_cast<const char *>(text) : ""});
            }
            Of(rows, table).push_back(std::move(row));
        }
        sqlite3_finalize(stmt);
    }
    sqlite3_close(db);
    return ok;
}

double KelvoBenchSqlite::BulkInsert(const std::string &path, const KelvoBenchRows &rows)
{
    std::remove(path.c_str());
    auto start = std::chrono::steady_clock::now();
    sqlite3 *db = nullptr;
    bool ok = sqlite3_open(path.c_str(), &db) == SQLITE_OK &&
              sqlite3_exec(db,
                           "CREATE TABLE programRF(serviceId integer, eventId integer, starttime integer, "
                           "duration integer, language text, tsid integer, onid integer, title text, descript text);"
                           "CREATE TABLE programMETA(serviceId integer, actId integer, metaSrcId integer, "
                           "metaProgId integer, starttime integer, duration integer, language text, title text, "
                           "descript text);BEGIN;",
                           nullptr, nullptr, nullptr) == SQLITE_OK;
    for (int table = 0; ok && table < 2; ++table) {
        sqlite3_stmt *stmt = nullptr;
        std::string sql = std::string("INSERT INTO ") + kTables[table] + " VALUES (?,?,?,?,?,?,?,?,?)";
        ok = sqlite3_prepare_v2(db, sql.c_str(), -1, &stmt, nullptr) == SQLITE_OK;
        for (const auto &row : Of(rows, table)) {
            if (!ok)
                break;
            for (int c = 0; c < 9; ++c) {
                const KelvoBenchCell &cell = row[static_cast<size_t>(c)];
                if (cell.type == SQLITE_INTEGER)
                    sqlite3_bind_int64(stmt, c + 1, cell.integer);
                else if (cell.type == SQLITE_FLOAT)
                    sqlite3_bind_double(stmt, c + 1, cell.real);
                else if (cell.type == SQLITE_NULL)
                    sqlite3_bind_null(stmt, c + 1);
                else
                    sqlite3_bind_text(stmt, c + 1, cell.text.c_str(), static_cast<int>(cell.text.size()),
                                      SQLITE_STATIC);
            }
            ok = sqlite3_step(stmt) == SQLITE_DONE;
            sqlite3_reset(stmt);
        }
        sqlite3_finalize(stmt);
    }
    ok = ok && sqlite3_exec(db, "COMMIT;", nullptr, nullptr, nullptr) == SQLITE_OK;
    sqlite3_close(db);
    return ok ? std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count() : -1;
}
