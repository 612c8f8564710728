/* Notification service. */
#ifndef KELVO_PLATFORM_NOTIFICATION_H
#define KELVO_PLATFORM_NOTIFICATION_H

#include <stdbool.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef struct _notification *notification_h;

typedef enum { NOTIFICATION_TYPE_NONE = -1, NOTIFICATION_TYPE_NOTI = 0, NOTIFICATION_TYPE_ONGOING } notification_type_e;

typedef enum {
    NOTIFICATION_TEXT_TYPE_NONE = -1,
    NOTIFICATION_TEXT_TYPE_TITLE = 0,
    NOTIFICATION_TEXT_TYPE_CONTENT
} notification_text_type_e;

typedef enum {
    NOTIFICATION_VARIABLE_TYPE_NONE = -1,
    NOTIFICATION_VARIABLE_TYPE_INT = 0,
    NOTIFICATION_VARIABLE_TYPE_DOUBLE,
    NOTIFICATION_VARIABLE_TYPE_STRING
} notification_variable_type_e;

enum {
    NOTIFICATION_DISPLAY_APP_NOTIFICATION_TRAY = 0x01,
    NOTIFICATION_DISPLAY_APP_TICKER = 0x02,
    NOTIFICATION_DISPLAY_APP_LOCK = 0x04,
    NOTIFICATION_DISPLAY_APP_INDICATOR = 0x08,
    NOTIFICATION_DISPLAY_APP_ACTIVE = 0x10
};

typedef enum {
    NOTIFICATION_ERROR_NONE = 0,
    NOTIFICATION_ERROR_INVALID_PARAMETER = -22,
    NOTIFICATION_ERROR_OUT_OF_MEMORY = -12,
    NOTIFICATION_ERROR_IO_ERROR = -5,
    NOTIFICATION_ERROR_SERVICE_NOT_READY = -0x01120000 | 0x11
} notification_error_e;

notification_h notification_create(notification_type_e type);
/* The variable list after `key` ends with NOTIFICATION_VARIABLE_TYPE_NONE. */
int notification_set_text(notification_h noti, notification_text_type_e type, const char *text, const char *key,
                          int args_type, ...);
int notification_set_display_applist(notification_h noti, int applist);
int notification_set_auto_remove(notification_h noti, bool auto_remove);
int notification_set_hide_timeout(notification_h noti, int timeout);
int notification_post(notification_h noti);
int notification_free(notification_h noti);

#ifdef __cplusplus
}
#endif

#endif
