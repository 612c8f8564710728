// The outcome of a dump or restore as a full-screen, transparent window holding one popup: a
// text and an "OK" button. Call Init, MakeWindow with the result, then Finish, which runs the
// main loop until the user answers or the popup times out.
#ifndef KELVO_UTIL_RESULT_WINDOW_H
#define KELVO_UTIL_RESULT_WINDOW_H

#include <Elementary.h>

class KelvoUtilResultWindow {
public:
    // Numbered like ResultNotification::EResultType. The fixed underlying type lets any int
    // through, so that a value out of the table is a valid (empty) popup, not undefined.
    enum eOperation : int { OP_DUMP_FAIL = 0, OP_DUMP_SUCCESS = 1, OP_RESTORE_FAIL = 2, OP_RESTORE_SUCCESS = 3 };

    // The process arguments are not handed to the toolkit.
    static void Init(int argc, char **argv);
    static void MakeWindow(eOperation op);
    // Returns when the main loop ends, with the toolkit shut down.
    static void Finish();
    // "OK" clicked or the popup dismissed (also by its time-out): ends the main loop.
    static void ResponseCb(void *data, Evas_Object *obj, void *event_info);

    // Deleted by the toolkit when it closes.
    static Evas_Object *win;
};

#endif
