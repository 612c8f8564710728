#include "resultWindow.h"

#include "KelvoUtilLog.h"

Evas_Object *KelvoUtilResultWindow::win = nullptr;

void KelvoUtilResultWindow::Init(int /*argc*/, char ** /*argv*/)
{
    KELVO_UTIL_LOG("init");
    elm_app_base_scale_set(2.0);
    elm_init(1, nullptr);
}

void KelvoUtilResultWindow::MakeWindow(eOperation op)
{
    KELVO_UTIL_LOG("try to make window with %d", static_cast<int>(op));

    win = elm_win_util_standard_add("text", "text");
    elm_win_title_set(win, "Dump");
    elm_win_autodel_set(win, EINA_TRUE);
    elm_policy_set(ELM_POLICY_QUIT, ELM_POLICY_QUIT_LAST_WINDOW_CLOSED);
    elm_win_alpha_set(win, EINA_TRUE);
    evas_object_resize(win, 1920, 1080);

    Evas_Object *popup = elm_popup_add(win);
    Evas_Object *label = elm_label_add(win);
    elm_object_style_set(popup, "c_popup_basic");
    elm_object_style_set(label, "popup/c_popup_bottom");
    elm_object_content_set(popup, label);
    elm_object_part_text_set(popup, "title,text", "Dump");

    // Restore results carry the title "Dump" too; an unknown operation leaves the text empty.
    switch (op) {
    case OP_DUMP_FAIL:
        elm_object_text_set(label, "MW DB Dump : Fail");
        break;
    case OP_DUMP_SUCCESS:
        elm_object_text_set(label, "MW DB Dump : Success");
        break;
    case OP_RESTORE_FAIL:
        elm_object_text_set(label, "RESTORE MW DB : Fail");
        break;
    case OP_RESTORE_SUCCESS:
        elm_object_text_set(label, "RESTORE MW DB : Success (Reboot please)");
        break;
    default:
        break;
    }

    Evas_Object *button = elm_button_add(popup);
    elm_object_style_set(button, "popup_wb");
    elm_object_text_set(button, "OK");
    elm_object_part_content_set(popup, "button1", button);
    evas_object_smart_callback_add(button, "clicked", ResponseCb, nullptr);

    evas_object_show(popup);
    evas_object_show(win);

    elm_popup_timeout_set(popup, 5.0);
    evas_object_smart_callback_add(popup, "dismissed", ResponseCb, nullptr);

    KELVO_UTIL_LOG("finish to make window");
}

void KelvoUtilResultWindow::ResponseCb(void * /*data*/, Evas_Object * /*obj*/, void * /*event_info*/)
{
    KELVO_UTIL_LOG("called");
    elm_exit();
    KELVO_UTIL_LOG("End");
}

void KelvoUtilResultWindow::Finish()
{
    KELVO_UTIL_LOG("called");
    elm_run();
    KELVO_UTIL_LOG("elm_run processed");
    elm_shutdown();
    KELVO_UTIL_LOG("elm_shutdown processed");
}
