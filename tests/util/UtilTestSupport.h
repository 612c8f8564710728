// Shared ground of the utility's tests: the fakes of the platform, a temporary TV and stick,
// tzplatform answering with the TV's folders, a recorder in place of the dump database, and the
// utility's log.
#ifndef KELVO_TESTS_UTIL_SUPPORT_H
#define KELVO_TESTS_UTIL_SUPPORT_H

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

#include "FakeDlog.h"
#include "FakeNotification.h"
#include "FakeSystem.h"
#include "FakeTvs.h"
#include "FakeUsb.h"
#include "programData.h"

// A folder under /tmp, removed with everything in it at the end of the test.
struct TempDir {
    TempDir();
    ~TempDir();
    const std::string &Path() const { return m_path; }
    std::string operator/(const std::string &name) const { return m_path + "/" + name; }

    std::string m_path;
};

void WriteFile(const std::string &path, const std::string &text);
std::string ReadFile(const std::string &path);
// kelvo-util's log messages, their "<file>: <function>(<line>) > " prefix cut off.
std::vector<std::string> UtilLog();

// KelvoUtilDatabaseHelper is defined in UtilTestSupport.cpp instead of databaseHelper.cpp, so
// that a test never writes the database under /opt: it records what it is asked to do.
struct RecordedDb {
    static std::vector<std::string> events;  // "OpenDB", "CloseDB", "RF", "META"
    static std::vector<KelvoUtilProgramData> rows;
};

// tzplatform_getenv answers from here; a variable that is missing gives null.
extern std::map<int, std::string> g_tzFolders;

// Names a parameterized case by its parameter's name member.
struct ByName {
    template <typename P>
    std::string operator()(const ::testing::TestParamInfo<P> &info) const
    {
        return info.param.name;
    }
};

// Every fake reset, the time at 1700000000, the TV's folders in m_tv, the stick in m_stick.
class UtilTest : public ::testing::Test {
protected:
    void SetUp() override;

    std::string RwApp() const { return m_tv / "globalapps"; }
    std::string DbSpace() const { return m_tv / "dbspace"; }

    TempDir m_tv;
    TempDir m_stick;
};

#endif
