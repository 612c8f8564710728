// What the database itself allows for the dump database's rows: the same schema and values,
// one statement per table prepared once, values bound, one transaction, a fresh file.
#ifndef KELVO_BENCH_SQLITEBULKINSERT_H
#define KELVO_BENCH_SQLITEBULKINSERT_H

#include <string>
#include <vector>

struct KelvoBenchCell {
    int type;  // SQLITE_INTEGER, SQLITE_FLOAT, SQLITE_TEXT or SQLITE_NULL
    long long integer;
    double real;
    std::string text;
};

// Rows of programRF and programMETA, nine cells each in the tables' column order.
struct KelvoBenchRows {
    std::vector<std::vector<KelvoBenchCell>> rf;
    std::vector<std::vector<KelvoBenchCell>> meta;

    size_t Count() const { return rf.size() + meta.size(); }
};

class KelvoBenchSqlite {
public:
    // The rows of an existing dump database; false when it cannot be read.
    static bool Read(const std::string &path, KelvoBenchRows &rows);
    // Writes the rows into a fresh file at `path`; the seconds it took, or a negative number.
    static double BulkInsert(const std::string &path, const KelvoBenchRows &rows);
};

#endif
