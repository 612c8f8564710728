// Host tzplatform: a variable's folder comes from the environment variable of its name, else
// from the folder the set uses, under /opt.
#include "tzplatform_config.h"

#include <cstdlib>

extern "C" const char *tzplatform_getenv(enum tzplatform_variable id)
{
    const char *name = nullptr;
    const char *fallback = nullptr;
    switch (id) {
    case TZ_SYS_DB:
        name = "TZ_SYS_DB";
        fallback = "/opt/dbspace";
        break;
    case TZ_SYS_RW_APP:
        name = "TZ_SYS_RW_APP";
        fallback = "/opt/usr/globalapps";
        break;
    default:
        return nullptr;
    }
    const char *value = getenv(name);
    return value != nullptr ? value : fallback;
}
