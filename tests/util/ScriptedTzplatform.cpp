#include "ScriptedTzplatform.h"

#include <map>

#include "tzplatform_config.h"

namespace {
std::map<int, std::string> g_values;
}

extern "C" const char *tzplatform_getenv(enum tzplatform_variable id)
{
    auto it = g_values.find(id);
    return it != g_values.end() ? it->second.c_str() : nullptr;
}

namespace ScriptedTzplatform {
void Reset() { g_values.clear(); }
void Set(int variable, const std::string &folder) { g_values[variable] = folder; }
void SetNull(int variable) { g_values.erase(variable); }
}  // namespace ScriptedTzplatform
