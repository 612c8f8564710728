// The host platform parts that integration runs of kelvo-util rely on: the dlog line format, the
// tzplatform folders, the USB devices named by KELVO_USB_MOUNTS, and a post without a bus.
#include <gtest/gtest.h>

#include <unistd.h>

#include <cstdlib>
#include <string>

#include "dlog.h"
#include "notification.h"
#include "tzplatform_config.h"
#include "usb-device.h"

namespace {
// Sets the variable, or unsets it for null; each test sets every variable it reads.
void SetEnv(const char *name, const char *value)
{
    if (value != nullptr)
        setenv(name, value, 1);
    else
        unsetenv(name);
}

std::string Text(const char *text)
{
    return text != nullptr ? text : "(null)";
}

TEST(HostDlog, OneLinePerCallWithPriorityTagAndPid)
{
    const std::string pid = std::to_string(getpid());
    ::testing::internal::CaptureStderr();
    for (int prio : {DLOG_VERBOSE, DLOG_DEBUG, DLOG_INFO, DLOG_WARN, DLOG_ERROR, DLOG_FATAL})
        __dlog_print(LOG_ID_SYSTEM, prio, "kelvo-util", "%s: %s(%d) > %s\n", "main.cpp", "main", 12, "hi");
    dlog_print(DLOG_ERROR, "kelvo-dbus-proxy", "mount path is %s", "/media/a\nb");

    std::string expected;
    for (char letter : std::string("VDIWEF"))
        expected += letter + ("/kelvo-util(" + pid + "): main.cpp: main(12) > hi\n");
    expected += "E/kelvo-dbus-proxy(" + pid + "): mount path is /media/a\\nb\n";
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), expected);
}

TEST(HostTzplatform, EnvironmentFirstThenTheFolderUnderOpt)
{
    SetEnv("TZ_SYS_DB", "/tv/opt/dbspace");
    SetEnv("TZ_SYS_RW_APP", nullptr);
    EXPECT_EQ(Text(tzplatform_getenv(TZ_SYS_DB)), "/tv/opt/dbspace");
    EXPECT_EQ(Text(tzplatform_getenv(TZ_SYS_RW_APP)), "/opt/usr/globalapps");
    SetEnv("TZ_SYS_DB", nullptr);
    SetEnv("TZ_SYS_RW_APP", "/tv/apps");
    EXPECT_EQ(Text(tzplatform_getenv(TZ_SYS_DB)), "/opt/dbspace");
    EXPECT_EQ(Text(tzplatform_getenv(TZ_SYS_RW_APP)), "/tv/apps");
    EXPECT_EQ(tzplatform_getenv(static_cast<tzplatform_variable>(6)), nullptr);
}

struct UsbCase {
    const char *name;
    const char *mounts;
    int count;
    const char *mountPath;  // of the first device
    const char *devName;
};

class HostUsb : public ::testing::TestWithParam<UsbCase> {};

TEST_P(HostUsb, DevicesFromTheMountList)
{
    const UsbCase &c = GetParam();
    SetEnv("KELVO_USB_MOUNTS", c.mounts);
    EXPECT_EQ(usb_device_init(), USB_ERROR_NO_ERROR);
    EXPECT_EQ(usb_get_connected_device_number(USB_MASS_STORAGE), c.count);
    EXPECT_EQ(usb_get_connected_device_number(3), 0);

    usb_device_list_h list = nullptr;
    usb_device_h device = nullptr;
    ASSERT_EQ(usb_device_get_device_list(USB_MASS_STORAGE, &list), USB_ERROR_NO_ERROR);
    usb_device_list_get_first(list, &device);
    EXPECT_EQ(Text(usb_device_get_mountpath(device)), c.mountPath);
    EXPECT_EQ(Text(usb_device_get_devname(device)), c.devName);
}

INSTANTIATE_TEST_SUITE_P(
    MountLists, HostUsb,
    ::testing::Values(UsbCase{"Empty", "", 0, "(null)", "(null)"},
                      UsbCase{"OnePath", "/media/USBDriveA1", 1, "/media/USBDriveA1", "USBDriveA1"},
                      UsbCase{"TwoInOrder", "/media/a=/dev/sdb1:/media/b=/dev/sdc1", 2, "/media/a", "/dev/sdb1"},
                      UsbCase{"EmptyEntriesSkipped", "::/media/a/:", 1, "/media/a/", "a"},
                      UsbCase{"NoMountPath", "=/dev/sdd1", 1, "(null)", "/dev/sdd1"},
                      UsbCase{"BlanksKept", "/media/my stick;x", 1, "/media/my stick;x", "my stick;x"}),
    [](const ::testing::TestParamInfo<UsbCase> &testCase) { return std::string(testCase.param.name); });

TEST(HostNotification, NoBusIsAnIoError)
{
    SetEnv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent/kelvo-test-bus");
    notification_h noti = notification_create(NOTIFICATION_TYPE_NOTI);
    EXPECT_EQ(notification_post(noti), NOTIFICATION_ERROR_IO_ERROR);
    notification_free(noti);
}
}  // namespace
