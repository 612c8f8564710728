/* The content daemon's D-Bus proxy library: one method call, JSON text in and out, and the
 * daemon's events. */
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

/* Events. The daemon raises an event as a number with its data; a process receives only the event
 * numbers it subscribed. Three kinds of client each have their own callback and their own family
 * of calls: a CPP client, a CS client (the calls without a suffix) and a plugin client. An event
 * subscribed by a family goes to the callback registered for that family, on a dispatch thread of
 * the library, never on the caller's thread; callbacks may subscribe and unsubscribe. Every call
 * returns 0 when done and -1 when not. */
typedef struct {
    int param1;
    int param2;
    int param3;
    const char *data;    /* the event's text, NUL-terminated; valid until the callback returns */
    unsigned int length; /* bytes in data, without the NUL */
} FSEventData;

typedef int (*KelvoEventCallback_CPP)(int event, FSEventData data);
typedef int (*KelvoEventCallback)(int event, int param1, int param2, int param3);
typedef int (*KelvoEventCallback_Plugin)(int event, FSEventData data, void *userData);

/* A later registration of a family replaces its callback; a null callback is refused. */
int RegisterKelvoCallBack_CPP(KelvoEventCallback_CPP callback);
int RegisterKelvoCallBack(KelvoEventCallback callback);
int RegisterKelvoCallBack_Plugin(KelvoEventCallback_Plugin callback);

/* Once a subscription returns 0, every later event of that number reaches the family's callback
 * (the plugin's with the user data of its subscription) until it is unsubscribed. Subscribing an
 * event again keeps one subscription (a plugin's with the new user data); unsubscribing one that
 * is not subscribed returns -1. -1 also when no bus can be reached. */
int SubscribeKelvoEventForCPP(int event);
int SubscribeKelvoEvent(int event);
int SubscribeKelvoEventForPlugin(int event, void *userData);
int UnSubsribeKelvoEventForCPP(int event);
int UnSubsribeKelvoEvent(int event);
int UnSubsribeKelvoEventForPlugin(int event);

#ifdef __cplusplus
}
#endif

#endif
