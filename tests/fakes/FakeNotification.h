// The notification service with scripted results; records every call and what was posted.
#ifndef KELVO_TESTS_FAKE_NOTIFICATION_H
#define KELVO_TESTS_FAKE_NOTIFICATION_H

#include <string>
#include <vector>

struct FakeNotificationCall {
    std::string name;    // e.g. "notification_set_text"
    int handle;          // index of the handle in creation order, -1 for null or unknown
    std::vector<std::string> args;  // the arguments after the handle, as text
};

struct PostedNotification {
    std::string title;
    std::string content;
    int applist;
    bool autoRemove;
    int hideTimeout;
};

namespace FakeNotification {
void Reset();
void FailCreate();                  // notification_create gives null
void SetDisplayApplistResult(int result);
void SetPostResult(int result);
std::vector<FakeNotificationCall> Calls();
// The names of the calls only, in order.
std::vector<std::string> CallNames();
// Every handle handed to notification_post (also when the post was scripted to fail).
std::vector<PostedNotification> Posted();
}  // namespace FakeNotification

#endif
