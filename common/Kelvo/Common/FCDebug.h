// Logging of the provider client. Every message text starts with "%s: %s(%d) > ", which these
// macros fill with the source file name, the function and the line.
#ifndef KELVO_FCDEBUG_H
#define KELVO_FCDEBUG_H

#include <cstring>
#include <sys/syscall.h>
#include <unistd.h>

#include "FCAssert.h"
#include "dlog.h"

#define KELVO_FILENAME (strrchr(__FILE__, '/') ? strrchr(__FILE__, '/') + 1 : __FILE__)

#define FC_LOG_TAG "kelvo-dbus-proxy"
// The level value printed in "DBG_LV[%d]".
#define FC_DBG_LV 0
// The two numbers printed in "[%d][%d]": process and thread.
#define FC_PID_TID static_cast<int>(getpid()), static_cast<int>(syscall(SYS_gettid))

#define FC_LOG_TAGGED(prio, tag, fmt, ...) dlog_print(prio, tag, fmt, KELVO_FILENAME, __func__, __LINE__, ##__VA_ARGS__)
#define FC_LOGD(fmt, ...) FC_LOG_TAGGED(DLOG_DEBUG, FC_LOG_TAG, fmt, ##__VA_ARGS__)
#define FC_LOGI(fmt, ...) FC_LOG_TAGGED(DLOG_INFO, FC_LOG_TAG, fmt, ##__VA_ARGS__)
#define FC_LOGW(fmt, ...) FC_LOG_TAGGED(DLOG_WARN, FC_LOG_TAG, fmt, ##__VA_ARGS__)
#define FC_LOGE(fmt, ...) FC_LOG_TAGGED(DLOG_ERROR, FC_LOG_TAG, fmt, ##__VA_ARGS__)
// The entry line of a proxy operation, under the proxy's class.
#define FC_PROXY_ENTRY(cls) FC_LOGD("%s: %s(%d) > DBG_LV[%d][" cls "::%s] called\n", FC_DBG_LV, __func__)

// Raises the platform assertion with the expression text, then logs the "ASSERT!" line.
#define FC_ASSERT_FAIL_TAGGED(tag, exprText)                                                                           \
    do {                                                                                                               \
        _FCAssert(exprText, __FILE__, __LINE__);                                                                       \
        FC_LOG_TAGGED(DLOG_ERROR, tag, "%s: %s(%d) > [%d][%d]ASSERT!, Func:%s\n", FC_PID_TID, __func__);               \
    } while (0)
#define FC_ASSERT_FAIL(exprText) FC_ASSERT_FAIL_TAGGED(FC_LOG_TAG, exprText)

#endif
