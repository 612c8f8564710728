#include "usbHandler.h"
#include "UtilTestSupport.h"

using ::testing::ElementsAre;

namespace {
struct CountCase {
    int count;
    bool connected;
};

class UsbHandlerPrepare : public UtilTest, public ::testing::WithParamInterface<CountCase> {};

TEST_P(UsbHandlerPrepare, ConnectedOnlyForAPositiveMassStorageCount)
{
    FakeUsb::SetInitResult(-5);
    FakeUsb::SetDeviceCount(GetParam().count);
    EXPECT_EQ(KelvoUtilUsbHandler().Prepare(), GetParam().connected);
    EXPECT_THAT(UtilLog(),
                ElementsAre("usb_device_init return = -5", "device number is " + std::to_string(GetParam().count)));
}

INSTANTIATE_TEST_SUITE_P(Counts, UsbHandlerPrepare,
                         ::testing::Values(CountCase{0, false}, CountCase{-22, false}, CountCase{1, true},
                                           CountCase{3, true}));

struct MountCase {
    const char *name;
    std::vector<FakeUsbDevice> devices;
    const char *path;
    const char *logged;
};

class UsbHandlerMountPath : public UtilTest, public ::testing::WithParamInterface<MountCase> {};

TEST_P(UsbHandlerMountPath, FirstDeviceReplacesWhatThePathHeld)
{
    FakeUsb::SetDevices(GetParam().devices);
    std::string path = "/previous/value";
    KelvoUtilUsbHandler().CheckUSBConnected(path);
    EXPECT_EQ(path, GetParam().path);
    EXPECT_THAT(UtilLog(), ElementsAre("usb is connected now", GetParam().logged));
}

INSTANTIATE_TEST_SUITE_P(
    Devices, UsbHandlerMountPath,
    ::testing::Values(MountCase{"FirstOfTwo",
                                {{"/media/USB_A", "/dev/sda1"}, {"/media/USB_B", "/dev/sdb1"}},
                                "/media/USB_A",
                                "mount path is /media/USB_A, device name is /dev/sda1"},
                      MountCase{
                          "NullMountPath", {{"", "/dev/sdc1"}}, "", "mount path is (null), device name is /dev/sdc1"},
                      MountCase{"NoDevice", {}, "", "mount path is (null), device name is (null)"}),
    ByName());
}  // namespace
