/* The content daemon's D-Bus proxy library: one method call, JSON text in and out. */
#ifndef KELVO_PLATFORM_KELVO_DBUS_PROXY_H
#define KELVO_PLATFORM_KELVO_DBUS_PROXY_H

#include <stdbool.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef struct {
    char *data;          /* reply text (JSON), NUL-terminated */
    unsigned int length; /* characters in data */
    bool success;        /* the daemon was reached and answered */
} KelvoCallResult;

/* Null when no bus can be reached; otherwise a result to release with DisposeCallResult,
 * whose success flag is clear when the call failed (error reply, unknown method, no daemon,
 * time-out). Safe to call from several threads at once. */
KelvoCallResult *Call(const char *method, const char *argument);
void DisposeCallResult(KelvoCallResult *result);

#ifdef __cplusplus
}
#endif

#endif
