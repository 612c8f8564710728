// The dump database as the utility's tests see it: KelvoUtilDatabaseHelper's operations are
// defined here instead of in databaseHelper.cpp, so that a test executable records the rows
// handed over and never touches the database file under /opt.
#ifndef KELVO_TESTS_UTIL_RECORDING_DATABASE_HELPER_H
#define KELVO_TESTS_UTIL_RECORDING_DATABASE_HELPER_H

#include <string>
#include <vector>

#include "programData.h"

namespace RecordedDb {
void Reset();
// "OpenDB", "CloseDB", "RF", "META" in call order.
std::vector<std::string> Events();
std::vector<KelvoUtilProgramData> RfRows();
std::vector<KelvoUtilProgramData> MetaRows();
}  // namespace RecordedDb

#endif
