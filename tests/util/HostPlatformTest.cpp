// The host implementations of dlog, tzplatform, the USB host service and the notification
// service, as integration runs of kelvo-util rely on them.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fcntl.h>
#include <signal.h>
#include <sys/wait.h>
#include <systemd/sd-bus.h>
#include <unistd.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <thread>

#include "dlog.h"
#include "notification.h"
#include "tzplatform_config.h"
#include "usb-device.h"

namespace {
class ScopedEnv {
public:
    ScopedEnv(const char *name, const char *value) : m_name(name)
    {
        const char *old = getenv(name);
        m_had = old != nullptr;
        if (m_had)
            m_old = old;
        if (value != nullptr)
            setenv(name, value, 1);
        else
            unsetenv(name);
    }
    ~ScopedEnv()
    {
        if (m_had)
            setenv(m_name.c_str(), m_old.c_str(), 1);
        else
            unsetenv(m_name.c_str());
    }

private:
    std::string m_name;
    bool m_had = false;
    std::string m_old;
};

// Standard error of the calls made by fn.
template <typename Fn>
std::string CaptureStderr(Fn fn)
{
    char path[] = "/tmp/kelvo-util-stderr-XXXXXX";
    int fd = mkstemp(path);
    int saved = dup(STDERR_FILENO);
    dup2(fd, STDERR_FILENO);
    fn();
    dup2(saved, STDERR_FILENO);
    close(saved);
    std::string text;
    lseek(fd, 0, SEEK_SET);
    char buffer[512];
    ssize_t n;
    while ((n = read(fd, buffer, sizeof buffer)) > 0)
        text.append(buffer, static_cast<size_t>(n));
    close(fd);
    unlink(path);
    return text;
}

std::string Pid() { return std::to_string(getpid()); }

// ---- dlog ---------------------------------------------------------------------------------

struct PrioCase {
    int prio;
    char letter;
};

class HostDlog : public ::testing::TestWithParam<PrioCase> {};

TEST_P(HostDlog, OneLinePerCallWithPriorityTagAndPid)
{
    std::string out = CaptureStderr([] {
        __dlog_print(LOG_ID_SYSTEM, GetParam().prio, "kelvo-util", "%s: %s(%d) > %s\n", "main.cpp", "main", 12, "hi");
    });
    EXPECT_EQ(out, std::string(1, GetParam().letter) + "/kelvo-util(" + Pid() + "): main.cpp: main(12) > hi\n");
}

INSTANTIATE_TEST_SUITE_P(Priorities, HostDlog,
                         ::testing::Values(PrioCase{DLOG_VERBOSE, 'V'}, PrioCase{DLOG_DEBUG, 'D'},
                                           PrioCase{DLOG_INFO, 'I'}, PrioCase{DLOG_WARN, 'W'},
                                           PrioCase{DLOG_ERROR, 'E'}, PrioCase{DLOG_FATAL, 'F'}));

TEST(HostDlogLine, InnerNewlinesStayOnTheLine)
{
    std::string out = CaptureStderr([] {
        dlog_print(DLOG_ERROR, "kelvo-dbus-proxy", "mount path is %s", "/media/a\nb");
        dlog_print(DLOG_INFO, "t", "plain");
    });
    EXPECT_EQ(out, "E/kelvo-dbus-proxy(" + Pid() + "): mount path is /media/a\\nb\nI/t(" + Pid() + "): plain\n");
}

// ---- tzplatform ---------------------------------------------------------------------------

TEST(HostTzplatform, EnvironmentFirstThenTheFolderUnderOpt)
{
    {
        ScopedEnv db("TZ_SYS_DB", "/tv/opt/dbspace");
        ScopedEnv rw("TZ_SYS_RW_APP", nullptr);
        EXPECT_STREQ(tzplatform_getenv(TZ_SYS_DB), "/tv/opt/dbspace");
        EXPECT_STREQ(tzplatform_getenv(TZ_SYS_RW_APP), "/opt/usr/globalapps");
    }
    {
        ScopedEnv db("TZ_SYS_DB", nullptr);
        ScopedEnv rw("TZ_SYS_RW_APP", "/tv/apps");
        EXPECT_STREQ(tzplatform_getenv(TZ_SYS_DB), "/opt/dbspace");
        EXPECT_STREQ(tzplatform_getenv(TZ_SYS_RW_APP), "/tv/apps");
    }
    EXPECT_EQ(tzplatform_getenv(static_cast<tzplatform_variable>(6)), nullptr);
}

// ---- USB ----------------------------------------------------------------------------------

struct UsbCase {
    const char *name;
    const char *mounts;
    int count;
    const char *mountPath;  // of the first device; null: none given
    const char *devName;
};

class HostUsb : public ::testing::TestWithParam<UsbCase> {};

TEST_P(HostUsb, DevicesFromTheMountList)
{
    const UsbCase &c = GetParam();
    ScopedEnv mounts("KELVO_USB_MOUNTS", c.mounts);
    EXPECT_EQ(usb_device_init(), USB_ERROR_NO_ERROR);
    EXPECT_EQ(usb_get_connected_device_number(USB_MASS_STORAGE), c.count);
    EXPECT_EQ(usb_get_connected_device_number(3), 0);

    usb_device_list_h list = nullptr;
    usb_device_h device = nullptr;
    ASSERT_EQ(usb_device_get_device_list(USB_MASS_STORAGE, &list), USB_ERROR_NO_ERROR);
    usb_device_list_get_first(list, &device);
    const char *mount = usb_device_get_mountpath(device);
    const char *name = usb_device_get_devname(device);
    if (c.mountPath == nullptr)
        EXPECT_EQ(mount, nullptr);
    else
        EXPECT_STREQ(mount, c.mountPath);
    if (c.devName == nullptr)
        EXPECT_EQ(name, nullptr);
    else
        EXPECT_STREQ(name, c.devName);
}

INSTANTIATE_TEST_SUITE_P(
    MountLists, HostUsb,
    ::testing::Values(UsbCase{"Empty", "", 0, nullptr, nullptr},
                      UsbCase{"OnePath", "/media/USBDriveA1", 1, "/media/USBDriveA1", "USBDriveA1"},
                      UsbCase{"TwoInOrder", "/media/a=/dev/sdb1:/media/b=/dev/sdc1", 2, "/media/a", "/dev/sdb1"},
                      UsbCase{"EmptyEntriesSkipped", "::/media/a:", 1, "/media/a", "a"},
                      UsbCase{"NoMountPath", "=/dev/sdd1", 1, nullptr, "/dev/sdd1"},
                      UsbCase{"BlanksKept", "/media/my stick;x", 1, "/media/my stick;x", "my stick;x"}),
    [](const ::testing::TestParamInfo<UsbCase> &info) { return std::string(info.param.name); });

// ---- notification -------------------------------------------------------------------------

TEST(HostNotification, NoBusIsAnIoError)
{
    ScopedEnv bus("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent/kelvo-test-bus");
    notification_h noti = notification_create(NOTIFICATION_TYPE_NOTI);
    EXPECT_EQ(notification_post(noti), NOTIFICATION_ERROR_IO_ERROR);
    notification_free(noti);
}

// A private session bus (dbus-daemon) for the tests below; stopped with the fixture.
class HostNotificationBus : public ::testing::Test {
protected:
    void SetUp() override
    {
        int fds[2];
        ASSERT_EQ(pipe(fds), 0);
        m_daemon = fork();
        ASSERT_GE(m_daemon, 0);
        if (m_daemon == 0) {
            dup2(fds[1], STDOUT_FILENO);
            close(fds[0]);
            execlp("dbus-daemon", "dbus-daemon", "--session", "--nofork", "--nopidfile", "--print-address=1",
                   static_cast<char *>(nullptr));
            _exit(127);
        }
        close(fds[1]);
        FILE *in = fdopen(fds[0], "r");
        char line[512] = {0};
        if (fgets(line, sizeof line, in) == nullptr) {
            fclose(in);
            GTEST_SKIP() << "dbus-daemon is not available";
        }
        fclose(in);
        std::string address = line;
        while (!address.empty() && (address.back() == '\n' || address.back() == '\r'))
            address.pop_back();
        m_env.reset(new ScopedEnv("DBUS_SESSION_BUS_ADDRESS", address.c_str()));
    }

    void TearDown() override
    {
        m_env.reset();
        if (m_daemon > 0) {
            kill(m_daemon, SIGTERM);
            waitpid(m_daemon, nullptr, 0);
        }
    }

    pid_t m_daemon = -1;
    std::unique_ptr<ScopedEnv> m_env;
};

TEST_F(HostNotificationBus, NoServerIsServiceNotReady)
{
    notification_h noti = notification_create(NOTIFICATION_TYPE_NOTI);
    EXPECT_EQ(notification_post(noti), NOTIFICATION_ERROR_SERVICE_NOT_READY);
    notification_free(noti);
}

struct NotifyCall {
    std::string appName, icon, summary, body;
    uint32_t replacesId = 99;
    int actions = -1, hints = -1;
    int32_t expire = 0;
};

int CountEntries(sd_bus_message *m, char type, const char *contents)
{
    int n = 0;
    if (sd_bus_message_enter_container(m, type, contents) < 0)
        return -1;
    while (sd_bus_message_at_end(m, false) == 0) {
        sd_bus_message_skip(m, nullptr);
        ++n;
    }
    sd_bus_message_exit_container(m);
    return n;
}

int OnNotify(sd_bus_message *m, void *userdata, sd_bus_error *)
{
    auto *call = static_cast<NotifyCall *>(userdata);
    const char *app, *icon, *summary, *body;
    sd_bus_message_read(m, "susss", &app, &call->replacesId, &icon, &summary, &body);
    call->appName = app;
    call->icon = icon;
    call->summary = summary;
    call->body = body;
    call->actions = CountEntries(m, 'a', "s");
    call->hints = CountEntries(m, 'a', "{sv}");
    sd_bus_message_read(m, "i", &call->expire);
    return sd_bus_reply_method_return(m, "u", 7u);
}

const sd_bus_vtable NOTIFY_VTABLE[] = {
    SD_BUS_VTABLE_START(0),
    SD_BUS_METHOD("Notify", "susssasa{sv}i", "u", OnNotify, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_VTABLE_END,
};

TEST_F(HostNotificationBus, PostIsOneNotifyCallWithTitleContentAndTimeout)
{
    NotifyCall call;
    sd_bus *server = nullptr;
    ASSERT_GE(sd_bus_open_user(&server), 0);
    ASSERT_GE(sd_bus_add_object_vtable(server, nullptr, "/org/freedesktop/Notifications",
                                       "org.freedesktop.Notifications", NOTIFY_VTABLE, &call),
              0);
    ASSERT_GE(sd_bus_request_name(server, "org.freedesktop.Notifications", 0), 0);
    std::atomic<bool> done{false};
    std::thread serve([&] {
        while (!done) {
            if (sd_bus_process(server, nullptr) == 0)
                sd_bus_wait(server, 100000);
        }
    });

    notification_h noti = notification_create(NOTIFICATION_TYPE_NOTI);
    notification_set_text(noti, NOTIFICATION_TEXT_TYPE_TITLE, "ChannelMap Dump", "TITLE",
                          NOTIFICATION_VARIABLE_TYPE_NONE);
    notification_set_text(noti, NOTIFICATION_TEXT_TYPE_CONTENT, "Restore ChannelMap Fail", "CONTENT",
                          NOTIFICATION_VARIABLE_TYPE_NONE);
    notification_set_hide_timeout(noti, 20);
    int result = notification_post(noti);
    done = true;
    serve.join();
    sd_bus_flush_close_unref(server);
    notification_free(noti);

    EXPECT_EQ(result, NOTIFICATION_ERROR_NONE);
    EXPECT_FALSE(call.appName.empty());
    EXPECT_EQ(call.replacesId, 0u);
    EXPECT_EQ(call.icon, "");
    EXPECT_EQ(call.summary, "ChannelMap Dump");
    EXPECT_EQ(call.body, "Restore ChannelMap Fail");
    EXPECT_EQ(call.actions, 0);
    EXPECT_EQ(call.hints, 0);
    EXPECT_EQ(call.expire, 20000);
}
}  // namespace
