// kelvo-post-result [TYPE]: posts one result as kelvo-util does at the end of its run, through the
// system's ResultNotification and the host platform's notification service, on the session bus
// it is given. TYPE is the result's number (default 1, a successful dump). It touches neither the
// clock nor a file, so a test can drive a real notification server with it.
#include <cstdlib>

#include "ResultNotification.h"

int main(int argc, char **argv)
{
    const int type = argc > 1 ? std::atoi(argv[1]) : ResultNotification::RESULT_DUMP_SUCCESS;
    ResultNotification::GetInstance()->Show(static_cast<ResultNotification::EResultType>(type));
    return 0;
}
