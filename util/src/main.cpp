// kelvo-util: started by the platform when USB storage is attached. Restores the middleware data
// when the storage carries RestoreMWDB, dumps it otherwise, and reports the outcome as a
// notification. One pass; the exit status is 0 on every path.
#include <string>

#include "KelvoUtilLog.h"
#include "ResultNotification.h"
#include "dataHandler.h"
#include "usbHandler.h"

int main()
{
    KELVO_UTIL_LOG("kelvo-util run starts by activation .....");
    ResultNotification *notifier = ResultNotification::GetInstance();
    KelvoUtilUsbHandler usbHandler;

    const bool connected = usbHandler.Prepare();
    if (!connected) {
        // false is 0, RESULT_DUMP_FAIL: no storage reads as a failed dump.
        notifier->Show(static_cast<ResultNotification::EResultType>(connected));
        KELVO_UTIL_LOG("kelvo-util 111 .....");
        return 0;
    }

    std::string mountPath;
    usbHandler.CheckUSBConnected(mountPath);
    KelvoUtilDataHandler dataHandler;
    KELVO_UTIL_LOG("kelvo-util 222 .....");

    if (dataHandler.IsRestoreMode(mountPath)) {
        if (dataHandler.RestoreData(mountPath)) {
            notifier->Show(ResultNotification::RESULT_RESTORE_SUCCESS);
            KELVO_UTIL_LOG("kelvo-util 333.....");
        } else {
            notifier->Show(ResultNotification::RESULT_RESTORE_FAIL);
            KELVO_UTIL_LOG("kelvo-util 444 .....");
        }
    } else if (dataHandler.BackupData(mountPath)) {
        KELVO_UTIL_LOG("kelvo-util 555 .....");
        notifier->Show(ResultNotification::RESULT_DUMP_SUCCESS);
    }
    // A failed dump shows nothing, unlike a failed restore.

    KELVO_UTIL_LOG("kelvo-util 666 .....");
    return 0;
}
