#include "TvsTestState.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

TvsTestState::TvsTestState()
{
    std::string pattern = (std::filesystem::temp_directory_path() / "kelvo-tvs-XXXXXX").string();
    if (mkdtemp(pattern.data()) == nullptr)
        ADD_FAILURE() << "mkdtemp failed";
    m_root = pattern;
    setenv("TZ_SYS_DB", Db().c_str(), 1);
    setenv("TZ_SYS_RW_APP", RwApp().c_str(), 1);
}

TvsTestState::~TvsTestState()
{
    unsetenv("TZ_SYS_DB");
    unsetenv("TZ_SYS_RW_APP");
    std::error_code ignored;
    std::filesystem::remove_all(m_root, ignored);
}

void TvsTestState::WriteServices(const std::vector<TCStoredService> &services) const
{
    ASSERT_TRUE(TCServiceDataStore::WriteServices(Db() + "/db-tvs-service.db", services));
}

void TvsTestState::WriteGuide(const std::vector<TCStoredEvent> &events) const
{
    ASSERT_TRUE(TCServiceDataStore::WriteGuide(Db() + "/db-tvs-epg.db", events));
}

std::string TvsTestState::Slurp(const std::string &path)
{
    std::ifstream in(path, std::ios::binary);
    std::ostringstream out;
    out << in.rdbuf();
    return out.str();
}
