// The host platform parts that integration runs of kelvo-util rely on: the dlog line format, the
// tzplatform folders, the USB devices named by KELVO_USB_MOUNTS, and what a post delivers to the
// notification server, or the error without one.
#include <gtest/gtest.h>

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "FCAssert.h"
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

// Every priority a caller passes keeps a mark of its own, so a reader can tell a line at 7 from
// one at 6, and none is dropped (the recognition proxy reports its failures at 7).
TEST(HostDlog, OneLinePerCallWithPriorityTagAndPid)
{
    const std::string pid = std::to_string(getpid());
    ::testing::internal::CaptureStderr();
    for (int prio = DLOG_UNKNOWN; prio <= DLOG_PRIO_MAX; ++prio)
        __dlog_print(LOG_ID_SYSTEM, prio, "kelvo-util", "%s: %s(%d) > %s\n", "main.cpp", "main", 12, "hi");
    dlog_print(DLOG_ERROR, "kelvo-dbus-proxy", "mount path is %s", "/media/a\nb");

    std::string expected;
    for (const char *mark : {"0", "1", "V", "D", "I", "W", "E", "F", "S", "9"})
        expected += mark + ("/kelvo-util(" + pid + "): main.cpp: main(12) > hi\n");
    expected += "E/kelvo-dbus-proxy(" + pid + "): mount path is /media/a\\nb\n";
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), expected);
}

// An assertion is a log line; only KELVO_ASSERT_ABORT=1 makes it end the process.
TEST(HostAssert, LogsTheExpressionAndAbortsOnlyWhenAsked)
{
    const std::string line = "E/kelvo-dbus-proxy(" + std::to_string(getpid()) + "): ASSERT(a < b) failed at f.cpp:12\n";
    for (const char *flag : {static_cast<const char *>(nullptr), "0", "yes", "11"}) {
        SCOPED_TRACE(Text(flag));
        SetEnv("KELVO_ASSERT_ABORT", flag);
        ::testing::internal::CaptureStderr();
        _FCAssert("a < b", "f.cpp", 12);
        EXPECT_EQ(::testing::internal::GetCapturedStderr(), line);
    }
    SetEnv("KELVO_ASSERT_ABORT", "1");
    EXPECT_DEATH(_FCAssert("a < b", "f.cpp", 12), "ASSERT\\(a < b\\) failed at f\\.cpp:12");
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

// A private session bus in a temporary folder that starts the notification simulator on the first
// call to its name, as the set's bus starts its services; the simulator records one line per
// notification. The bus is this process's session bus while the object lives.
class NotificationBus {
public:
    explicit NotificationBus(bool withServer)
    {
        char pattern[] = "/tmp/kelvo-notification-bus-XXXXXX";
        if (mkdtemp(pattern) == nullptr)
            return;
        m_folder = pattern;
        const std::string address = "unix:path=" + m_folder + "/bus";
        std::filesystem::create_directory(m_folder + "/services");
        std::ofstream(m_folder + "/bus.conf")
            << "<busconfig><type>session</type><listen>" << address << "</listen><servicedir>" << m_folder
            << "/services</servicedir><policy context=\"default\"><allow send_destination=\"*\" eavesdrop=\"true\"/>"
               "<allow eavesdrop=\"true\"/>"
               "<allow own=\"*\"/></policy></busconfig>\n";
        if (withServer)
            std::ofstream(m_folder + "/services/org.freedesktop.Notifications.service")
                << "[D-BUS Service]\nName=org.freedesktop.Notifications\nExec=" << KELVO_NOTIFY_SIM << " --record "
                << RecordFile() << "\n";
        // Set before the bus starts, so that the simulator it starts finds the bus too.
        SetEnv("DBUS_SESSION_BUS_ADDRESS", address.c_str());
        int ready[2];
        if (pipe(ready) != 0)
            return;
        m_bus = fork();
        if (m_bus == 0) {
            dup2(ready[1], 3);
            const std::string config = "--config-file=" + m_folder + "/bus.conf";
            execlp("dbus-daemon", "dbus-daemon", config.c_str(), "--nofork", "--print-address=3", nullptr);
            _exit(127);
        }
        close(ready[1]);
        // The address is printed once the bus listens.
        char c;
        m_ready = m_bus > 0 && read(ready[0], &c, 1) == 1;
        close(ready[0]);
    }
    ~NotificationBus()
    {
        if (m_bus > 0) {
            kill(m_bus, SIGTERM);
            waitpid(m_bus, nullptr, 0);
        }
        std::error_code ignored;
        if (!m_folder.empty())
            std::filesystem::remove_all(m_folder, ignored);
    }
    NotificationBus(const NotificationBus &) = delete;
    NotificationBus &operator=(const NotificationBus &) = delete;

    bool Ready() const { return m_ready; }
    // The simulator's lines, each "app TAB summary TAB body TAB timeout"; it writes a line before
    // it answers the call.
    std::vector<std::string> Records() const
    {
        std::vector<std::string> lines;
        std::ifstream in(RecordFile());
        for (std::string line; std::getline(in, line);)
            lines.push_back(line);
        return lines;
    }

private:
    std::string RecordFile() const { return m_folder + "/notifications.tsv"; }

    std::string m_folder;
    pid_t m_bus = -1;
    bool m_ready = false;
};

// The title is the summary and the content the body; the hide timeout, in seconds, becomes the
// expiry in milliseconds, and none (0) lets the server decide (-1).
TEST(HostNotification, PostReachesTheServerAsSummaryBodyAndExpiry)
{
    NotificationBus bus(true);
    ASSERT_TRUE(bus.Ready());
    const struct {
        const char *title, *content;
        int hideTimeout;
        const char *recorded;
    } cases[] = {
        {"ChannelMap Dump", "Restore ChannelMap Success", 20,
         "kelvo-test-platform\tChannelMap Dump\tRestore ChannelMap Success\t20000"},
        {"Title", "", 1, "kelvo-test-platform\tTitle\t\t1000"},
        {"", "Content", 0, "kelvo-test-platform\t\tContent\t-1"},
    };
    std::vector<std::string> expected;
    for (const auto &c : cases) {
        SCOPED_TRACE(c.recorded);
        notification_h noti = notification_create(NOTIFICATION_TYPE_NOTI);
        EXPECT_EQ(notification_set_text(noti, NOTIFICATION_TEXT_TYPE_TITLE, c.title, "TITLE",
                                        NOTIFICATION_VARIABLE_TYPE_NONE),
                  NOTIFICATION_ERROR_NONE);
        EXPECT_EQ(notification_set_text(noti, NOTIFICATION_TEXT_TYPE_CONTENT, c.content, "CONTENT",
                                        NOTIFICATION_VARIABLE_TYPE_NONE),
                  NOTIFICATION_ERROR_NONE);
        EXPECT_EQ(notification_set_hide_timeout(noti, c.hideTimeout), NOTIFICATION_ERROR_NONE);
        EXPECT_EQ(notification_post(noti), NOTIFICATION_ERROR_NONE);
        notification_free(noti);
        expected.push_back(c.recorded);
        EXPECT_EQ(bus.Records(), expected);
    }
}

TEST(HostNotification, NoServerOnTheBusIsNotReady)
{
    NotificationBus bus(false);
    ASSERT_TRUE(bus.Ready());
    notification_h noti = notification_create(NOTIFICATION_TYPE_NOTI);
    EXPECT_EQ(notification_post(noti), NOTIFICATION_ERROR_SERVICE_NOT_READY);
    notification_free(noti);
}
}  // namespace
