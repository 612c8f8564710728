#include "FakeVconf.h"

#include <map>
#include <mutex>

#include "vconf.h"

namespace {
std::mutex g_mutex;
std::map<std::string, int> g_values;
std::vector<std::string> g_reads;
}  // namespace

extern "C" int vconf_get_int(const char *in_key, int *intval)
{
    std::lock_guard<std::mutex> lock(g_mutex);
    if (in_key == nullptr || intval == nullptr)
        return VCONF_ERROR;
    g_reads.emplace_back(in_key);
    auto it = g_values.find(in_key);
    if (it == g_values.end())
        return VCONF_ERROR;
    *intval = it->second;
    return VCONF_OK;
}

namespace FakeVconf {
void Clear()
{
    std::lock_guard<std::mutex> lock(g_mutex);
    g_values.clear();
    g_reads.clear();
}
void SetInt(const std::string &key, int value)
{
    std::lock_guard<std::mutex> lock(g_mutex);
    g_values[key] = value;
}
std::vector<std::string> Reads()
{
    std::lock_guard<std::mutex> lock(g_mutex);
    return g_reads;
}
}  // namespace FakeVconf
