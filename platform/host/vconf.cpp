// Host vconf: one file per key under the simulated TV's control folder, vconf/<key> (the key's
// slashes as folders), holding the value as decimal text. A test or a person sets a key by
// writing its file; a missing, unreadable or non-numeric file is a failed read.
#include "vconf.h"

#include <string>

#include "KelvoSimFolder.h"

extern "C" int vconf_get_int(const char *in_key, int *intval)
{
    if (in_key == nullptr || intval == nullptr || *in_key == '\0')
        return VCONF_ERROR;
    const std::string key = in_key;
    // A key names a file below vconf/, never one beside or above it.
    if (key.front() == '/' || key.find("..") != std::string::npos)
        return VCONF_ERROR;
    std::string text;
    int value = 0;
    if (!KelvoSimReadFile(KelvoSimFolder() + "/vconf/" + key, text) || !KelvoSimParseInt(text, value))
        return VCONF_ERROR;
    *intval = value;
    return VCONF_OK;
}
