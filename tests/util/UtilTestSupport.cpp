#include "UtilTestSupport.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "FakeDlog.h"
#include "FakeNotification.h"
#include "FakeSystem.h"
#include "FakeTvs.h"
#include "FakeUsb.h"
#include "RecordingDatabaseHelper.h"
#include "ScriptedTzplatform.h"
#include "tzplatform_config.h"

TempDir::TempDir()
{
    char pattern[] = "/tmp/kelvo-util-test-XXXXXX";
    char *made = mkdtemp(pattern);
    if (made == nullptr)
        abort();
    m_path = made;
}

TempDir::~TempDir()
{
    std::error_code ignored;
    std::filesystem::remove_all(m_path, ignored);
}

void WriteFile(const std::string &path, const std::string &text)
{
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out << text;
}

std::string ReadFile(const std::string &path)
{
    std::ifstream in(path, std::ios::binary);
    std::stringstream text;
    text << in.rdbuf();
    return text.str();
}

void MakeDir(const std::string &path) { std::filesystem::create_directories(path); }

void MakeLink(const std::string &target, const std::string &path)
{
    if (symlink(target.c_str(), path.c_str()) != 0)
        abort();
}

bool IsLink(const std::string &path)
{
    struct stat st;
    return lstat(path.c_str(), &st) == 0 && S_ISLNK(st.st_mode);
}

bool IsDir(const std::string &path)
{
    struct stat st;
    return lstat(path.c_str(), &st) == 0 && S_ISDIR(st.st_mode);
}

bool IsRegularFile(const std::string &path)
{
    struct stat st;
    return lstat(path.c_str(), &st) == 0 && S_ISREG(st.st_mode);
}

std::vector<std::string> UtilLog() { return FakeDlog::Messages("kelvo-util"); }

int LogIndex(const std::string &text)
{
    std::vector<std::string> log = UtilLog();
    for (size_t i = 0; i < log.size(); ++i)
        if (log[i] == text)
            return static_cast<int>(i);
    return -1;
}

void UtilTest::SetUp()
{
    FakeDlog::Clear();
    FakeNotification::Reset();
    FakeSystem::Reset();
    FakeSystem::SetNow(1700000000);
    FakeTvs::Reset();
    FakeUsb::Reset();
    RecordedDb::Reset();
    ScriptedTzplatform::Reset();
    ScriptedTzplatform::Set(TZ_SYS_RW_APP, RwApp());
    ScriptedTzplatform::Set(TZ_SYS_DB, DbSpace());
    MakeDir(RwApp() + "/tvs-chms/data");
    MakeDir(DbSpace());
}
