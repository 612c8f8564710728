// Logging of kelvo-util: tag "kelvo-util", system buffer, warning priority; every line starts
// with "<file>: <function>(<line>) > ".
#ifndef KELVO_UTIL_LOG_H
#define KELVO_UTIL_LOG_H

#include "FCDebug.h"
#include "dlog.h"

#define KELVO_UTIL_TAG "kelvo-util"

#define KELVO_UTIL_LOG_PRIO(prio, fmt, ...)                                                                            \
    __dlog_print(LOG_ID_SYSTEM, prio, KELVO_UTIL_TAG, "%s: %s(%d) > " fmt, KELVO_FILENAME, __func__, __LINE__,         \
                 ##__VA_ARGS__)
#define KELVO_UTIL_LOG(fmt, ...) KELVO_UTIL_LOG_PRIO(DLOG_WARN, fmt, ##__VA_ARGS__)
#define KELVO_UTIL_LOGD(fmt, ...) KELVO_UTIL_LOG_PRIO(DLOG_DEBUG, fmt, ##__VA_ARGS__)

#endif
