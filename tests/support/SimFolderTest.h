// A test with a simulated TV's control folder of its own: KELVO_SIM_FOLDER names a fresh
// temporary folder for the host's vconf and product information, removed after the test.
#ifndef KELVO_TEST_SIMFOLDERTEST_H
#define KELVO_TEST_SIMFOLDERTEST_H

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <system_error>

class KelvoSimFolderTest : public testing::Test {
protected:
    void SetUp() override
    {
        std::string pattern = (std::filesystem::temp_directory_path() / "kelvo-sim-XXXXXX").string();
        ASSERT_NE(mkdtemp(pattern.data()), nullptr);
        m_folder = pattern;
        setenv("KELVO_SIM_FOLDER", m_folder.c_str(), 1);
    }
    void TearDown() override
    {
        unsetenv("KELVO_SIM_FOLDER");
        std::error_code ignored;
        std::filesystem::remove_all(m_folder, ignored);
    }
    // Writes a file of the folder, making the folders on its way.
    void Write(const std::string &relative, const std::string &text) const
    {
        const std::filesystem::path path = m_folder + "/" + relative;
        std::filesystem::create_directories(path.parent_path());
        std::ofstream(path) << text;
    }

    std::string m_folder;
};

#endif
