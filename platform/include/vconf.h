/* vconf: the platform's key-value settings. */
#ifndef KELVO_PLATFORM_VCONF_H
#define KELVO_PLATFORM_VCONF_H

#ifdef __cplusplus
extern "C" {
#endif

#define VCONF_OK 0
#define VCONF_ERROR (-1)

/* Reads the integer setting in_key into *intval: VCONF_OK, or VCONF_ERROR when the key cannot be read
   (*intval untouched). */
int vconf_get_int(const char *in_key, int *intval);

#ifdef __cplusplus
}
#endif

#endif
