/* tzplatform: the platform's well-known folders. */
#ifndef KELVO_PLATFORM_TZPLATFORM_CONFIG_H
#define KELVO_PLATFORM_TZPLATFORM_CONFIG_H

#ifdef __cplusplus
extern "C" {
#endif

/* Only the variables this system reads are named; the numbers are the platform's. */
enum tzplatform_variable {
    TZ_SYS_DB = 5,      /* platform database folder, e.g. /opt/dbspace */
    TZ_SYS_RW_APP = 27, /* TV services' data root, e.g. /opt/usr/globalapps */
    TZPLATFORM_VARIABLE_MAX = 64
};

/* The folder of the variable, or null when it has none. */
const char *tzplatform_getenv(enum tzplatform_variable id);

#ifdef __cplusplus
}
#endif

#endif
