// tzplatform with values a test sets, null included (the host one never gives null for the
// variables the utility reads).
#ifndef KELVO_TESTS_UTIL_SCRIPTED_TZPLATFORM_H
#define KELVO_TESTS_UTIL_SCRIPTED_TZPLATFORM_H

#include <string>

namespace ScriptedTzplatform {
// Every variable null.
void Reset();
void Set(int variable, const std::string &folder);
void SetNull(int variable);
}  // namespace ScriptedTzplatform

#endif
