#include "UtilTestSupport.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "FakeCall.h"
#include "databaseHelper.h"
#include "tzplatform_config.h"

TempDir::TempDir()
{
    char pattern[] = "/tmp/kelvo-util-test-XXXXXX";
    if (mkdtemp(pattern) == nullptr)
        abort();
    m_path = pattern;
}

TempDir::~TempDir()
{
    std::error_code ignored;
    std::filesystem::remove_all(m_path, ignored);
}

void WriteFile(const std::string &path, const std::string &text)
{
    std::ofstream(path, std::ios::binary) << text;
}

std::string ReadFile(const std::string &path)
{
    std::stringstream text;
    text << std::ifstream(path, std::ios::binary).rdbuf();
    return text.str();
}

std::vector<std::string> UtilLog()
{
    return FakeDlog::Messages("kelvo-util");
}

std::vector<std::string> RecordedDb::events;
std::vector<KelvoUtilProgramData> RecordedDb::rows;

// The connection and builders are never used here, so the members stay as the header leaves them.
KelvoUtilDatabaseHelper::KelvoUtilDatabaseHelper() = default;
KelvoUtilDatabaseHelper::~KelvoUtilDatabaseHelper() = default;
void KelvoUtilDatabaseHelper::OpenDB()
{
    RecordedDb::events.push_back("OpenDB");
}
void KelvoUtilDatabaseHelper::CloseDB()
{
    RecordedDb::events.push_back("CloseDB");
}

static void Record(const char *event, const KelvoUtilProgramData &row)
{
    RecordedDb::events.push_back(event);
    RecordedDb::rows.push_back(row);
}

void KelvoUtilDatabaseHelper::InsertProgramRF(KelvoUtilProgramData row)
{
    Record("RF", row);
}
void KelvoUtilDatabaseHelper::InsertProgramMeta(KelvoUtilProgramData row)
{
    Record("META", row);
}

std::map<int, std::string> g_tzFolders;

extern "C" const char *tzplatform_getenv(enum tzplatform_variable id)
{
    auto it = g_tzFolders.find(id);
    return it != g_tzFolders.end() ? it->second.c_str() : nullptr;
}

void UtilTest::SetUp()
{
    FakeCall::Reset();
    FakeDlog::Clear();
    FakeNotification::Reset();
    FakeSystem::Reset();
    FakeSystem::SetNow(1700000000);
    FakeTvs::Reset();
    FakeUsb::Reset();
    RecordedDb::events.clear();
    RecordedDb::rows.clear();
    g_tzFolders = {{TZ_SYS_RW_APP, RwApp()}, {TZ_SYS_DB, DbSpace()}};
    std::filesystem::create_directories(RwApp() + "/tvs-chms/data");
    std::filesystem::create_directories(DbSpace());
}
