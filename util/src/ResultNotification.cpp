#include "ResultNotification.h"

#include "KelvoUtilLog.h"

std::unique_ptr<ResultNotification> ResultNotification::m_Instance;
std::once_flag ResultNotification::m_flag;

ResultNotification *ResultNotification::GetInstance()
{
    std::call_once(m_flag, m_CreateInstance);
    KELVO_UTIL_LOG("Get ResultNotification Instance.");
    return m_Instance.get();
}

// A named operation rather than a lambda, so that its log line names a function a reader can find.
void ResultNotification::m_CreateInstance()
{
    KELVO_UTIL_LOG("Create ResultNotification Instance.");
    m_Instance.reset(new ResultNotification());
}

std::string ResultNotification::m_ConvertTypeToContentString(EResultType type)
{
    std::string content;
    switch (type) {
    case RESULT_DUMP_FAIL:
        content = "ChannelMap Dump Fail";
        break;
    case RESULT_DUMP_SUCCESS:
        content = "ChannelMap Dump Success";
        break;
    case RESULT_RESTORE_FAIL:
        content = "Restore ChannelMap Fail";
        break;
    case RESULT_RESTORE_SUCCESS:
        content = "Restore ChannelMap Success";
        break;
    default:
        break;
    }
    KELVO_UTIL_LOG("EResultType : [%d], [%s]", static_cast<int>(type), content.c_str());
    return content;
}

void ResultNotification::Show(EResultType type)
{
    m_notihandle = nullptr;
    m_notihandle = notification_create(NOTIFICATION_TYPE_NOTI);
    KELVO_UTIL_LOG("m_notihandle:[%p]", static_cast<void *>(m_notihandle));
    if (m_notihandle == nullptr) {
        KELVO_UTIL_LOG("notification_create failed");
        notification_free(m_notihandle);
        return;
    }

    // Restores are reported under the same title as dumps.
    const std::string title = "ChannelMap Dump";
    const std::string content = m_ConvertTypeToContentString(type);
    notification_set_text(m_notihandle, NOTIFICATION_TEXT_TYPE_TITLE, title.c_str(), "TITLE",
                          NOTIFICATION_VARIABLE_TYPE_NONE);
    notification_set_text(m_notihandle, NOTIFICATION_TEXT_TYPE_CONTENT, content.c_str(), "CONTENT",
                          NOTIFICATION_VARIABLE_TYPE_NONE);

    // The two failure lines below name each other's call; log readers on the set match them
    // in this form, so they stay as they are.
    int ret = notification_set_display_applist(m_notihandle, NOTIFICATION_DISPLAY_APP_NOTIFICATION_TRAY |
                                                                 NOTIFICATION_DISPLAY_APP_ACTIVE);
    if (ret != NOTIFICATION_ERROR_NONE)
        KELVO_UTIL_LOG("notification_post failed[%d]", ret);

    notification_set_hide_timeout(m_notihandle, 20);
    notification_set_auto_remove(m_notihandle, true);

    ret = notification_post(m_notihandle);
    if (ret != NOTIFICATION_ERROR_NONE)
        KELVO_UTIL_LOG("notification_set_display_applist failed[%d]", ret);
}
