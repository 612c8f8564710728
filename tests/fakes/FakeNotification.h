// The notification service with scripted results; records every call as one text.
#ifndef KELVO_TESTS_FAKE_NOTIFICATION_H
#define KELVO_TESTS_FAKE_NOTIFICATION_H

#include <string>
#include <vector>

namespace FakeNotification {
void Reset();
void FailCreate();  // notification_create gives null
void SetDisplayApplistResult(int result);
void SetPostResult(int result);
// "name(handle, args...)" in call order, the handle written "handle" or "null", e.g.
// "notification_set_text(handle, 1, Restore ChannelMap Success, CONTENT, -1)".
std::vector<std::string> Calls();
}  // namespace FakeNotification

#endif
