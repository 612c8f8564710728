// A reply read element by element must read as the whole reply does, for any text: the same
// success, the same elements in order, the same rest. A difference ends the run.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "FakeDlog.h"
#include "JsonEachCheck.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const std::string text(reinterpret_cast<const char *>(data), size);
    for (const char *key : {"out_mapProgramWithSourceID", "a"}) {
        std::string difference = KelvoJsonEachDifference(text, key);
        if (!difference.empty()) {
            std::fprintf(stderr, "key %s: %s\n", key, difference.c_str());
            std::abort();
        }
    }
    FakeDlog::Clear();
    return 0;
}
