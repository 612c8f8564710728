// The one platform notification that tells the user how a dump or restore ended.
#ifndef KELVO_UTIL_RESULT_NOTIFICATION_H
#define KELVO_UTIL_RESULT_NOTIFICATION_H

#include <memory>
#include <mutex>
#include <string>

#include "notification.h"

class ResultNotification {
public:
    // Numbered like KelvoUtilResultWindow::eOperation. The fixed underlying type lets any int
    // through, so that a value out of the table is a valid (empty) result, not undefined.
    enum EResultType : int {
        RESULT_DUMP_FAIL = 0,
        RESULT_DUMP_SUCCESS = 1,
        RESULT_RESTORE_FAIL = 2,
        RESULT_RESTORE_SUCCESS = 3
    };

    static ResultNotification *GetInstance();
    void Show(EResultType type);

private:
    ResultNotification() = default;
    static void m_CreateInstance();
    std::string m_ConvertTypeToContentString(EResultType type);

    notification_h m_notihandle = nullptr;

    static std::unique_ptr<ResultNotification> m_Instance;
    static std::once_flag m_flag;
};

#endif
