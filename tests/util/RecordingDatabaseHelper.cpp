#include "RecordingDatabaseHelper.h"

#include "databaseHelper.h"

namespace {
std::vector<std::string> g_events;
std::vector<KelvoUtilProgramData> g_rfRows;
std::vector<KelvoUtilProgramData> g_metaRows;
}  // namespace

// The connection and builders are never used here, so the members stay as the header leaves them.
KelvoUtilDatabaseHelper::KelvoUtilDatabaseHelper() = default;
KelvoUtilDatabaseHelper::~KelvoUtilDatabaseHelper() = default;

void KelvoUtilDatabaseHelper::OpenDB() { g_events.push_back("OpenDB"); }
void KelvoUtilDatabaseHelper::CloseDB() { g_events.push_back("CloseDB"); }

void KelvoUtilDatabaseHelper::InsertProgramRF(KelvoUtilProgramData row)
{
    g_events.push_back("RF");
    g_rfRows.push_back(row);
}

void KelvoUtilDatabaseHelper::InsertProgramMeta(KelvoUtilProgramData row)
{
    g_events.push_back("META");
    g_metaRows.push_back(row);
}

namespace RecordedDb {
void Reset()
{
    g_events.clear();
    g_rfRows.clear();
    g_metaRows.clear();
}

std::vector<std::string> Events() { return g_events; }
std::vector<KelvoUtilProgramData> RfRows() { return g_rfRows; }
std::vector<KelvoUtilProgramData> MetaRows() { return g_metaRows; }
}  // namespace RecordedDb
