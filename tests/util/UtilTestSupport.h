// Shared ground of the utility's tests: temporary folders, small file helpers, and a fixture
// that resets every fake and points the tzplatform folders into a temporary TV.
#ifndef KELVO_TESTS_UTIL_SUPPORT_H
#define KELVO_TESTS_UTIL_SUPPORT_H

#include <gtest/gtest.h>

#include <string>
#include <vector>

class TempDir {
public:
    TempDir();
    ~TempDir();
    TempDir(const TempDir &) = delete;
    TempDir &operator=(const TempDir &) = delete;

    const std::string &Path() const { return m_path; }
    std::string operator/(const std::string &name) const { return m_path + "/" + name; }

private:
    std::string m_path;
};

void WriteFile(const std::string &path, const std::string &text);
std::string ReadFile(const std::string &path);
void MakeDir(const std::string &path);
void MakeLink(const std::string &target, const std::string &path);
bool IsLink(const std::string &path);
bool IsDir(const std::string &path);
bool IsRegularFile(const std::string &path);

// Log messages of kelvo-util (prefix cut off), and the index of the first one equal to text.
std::vector<std::string> UtilLog();
int LogIndex(const std::string &text);

// Every fake reset, the clock fixed at 1700000000, the TV's folders in m_tv, the stick in m_stick.
class UtilTest : public ::testing::Test {
protected:
    void SetUp() override;

    std::string RwApp() const { return m_tv / "globalapps"; }
    std::string DbSpace() const { return m_tv / "dbspace"; }

    TempDir m_tv;
    TempDir m_stick;
};

#endif
