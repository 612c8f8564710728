#include "FCAssert.h"
#include "dlog.h"

#include <cstdlib>
#include <cstring>

// On the set an assertion is a log line; a developer who wants a core sets KELVO_ASSERT_ABORT=1.
void _FCAssert(const char *expression, const char *file, int line)
{
    dlog_print(DLOG_ERROR, "kelvo-dbus-proxy", "ASSERT(%s) failed at %s:%d", expression ? expression : "(null)",
               file ? file : "(null)", line);
    const char *abortFlag = getenv("KELVO_ASSERT_ABORT");
    if (abortFlag != nullptr && strcmp(abortFlag, "1") == 0)
        abort();
}
