// vconf with the keys a test sets; every other key fails to read.
#ifndef KELVO_TESTS_FAKE_VCONF_H
#define KELVO_TESTS_FAKE_VCONF_H

#include <string>
#include <vector>

namespace FakeVconf {
void Clear();
void SetInt(const std::string &key, int value);
// The keys read, in order.
std::vector<std::string> Reads();
}  // namespace FakeVconf

#endif
