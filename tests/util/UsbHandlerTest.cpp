#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "FakeUsb.h"
#include "UtilTestSupport.h"
#include "usbHandler.h"

using ::testing::ElementsAre;

namespace {
class UsbHandlerTest : public UtilTest {};

struct CountCase {
    int count;
    bool connected;
};

class UsbHandlerPrepare : public UsbHandlerTest, public ::testing::WithParamInterface<CountCase> {};

TEST_P(UsbHandlerPrepare, ConnectedOnlyForAPositiveMassStorageCount)
{
    FakeUsb::SetInitResult(-5);
    FakeUsb::SetDeviceCount(GetParam().count);
    EXPECT_EQ(KelvoUtilUsbHandler().Prepare(), GetParam().connected);
    EXPECT_THAT(FakeUsb::Calls(), ElementsAre("usb_device_init", "usb_get_connected_device_number(8)"));
    EXPECT_THAT(UtilLog(), ElementsAre("usb_device_init return = -5",
                                       "device number is " + std::to_string(GetParam().count)));
}

INSTANTIATE_TEST_SUITE_P(Counts, UsbHandlerPrepare,
                         ::testing::Values(CountCase{0, false}, CountCase{-1, false}, CountCase{-22, false},
                                           CountCase{1, true}, CountCase{3, true}));

TEST_F(UsbHandlerTest, FirstDeviceMountPathReplacesWhatThePathHeld)
{
    FakeUsb::SetDevices({{true, "/media/USB_A", "/dev/sda1"}, {true, "/media/USB_B", "/dev/sdb1"}});
    std::string path = "/previous/value";
    KelvoUtilUsbHandler().CheckUSBConnected(path);
    EXPECT_EQ(path, "/media/USB_A");
    EXPECT_THAT(UtilLog(), ElementsAre("usb is connected now", "mount path is /media/USB_A, device name is /dev/sda1"));
    EXPECT_EQ(FakeUsb::Calls()[0], "usb_device_get_device_list(8)");
}

TEST_F(UsbHandlerTest, MissingMountPathOrDeviceLeavesThePathEmpty)
{
    FakeUsb::SetDevices({{false, "", "/dev/sdc1"}});
    std::string path = "stale";
    KelvoUtilUsbHandler().CheckUSBConnected(path);
    EXPECT_EQ(path, "");
    EXPECT_EQ(UtilLog().back(), "mount path is (null), device name is /dev/sdc1");

    FakeUsb::SetDevices({});
    path = "stale";
    KelvoUtilUsbHandler().CheckUSBConnected(path);
    EXPECT_EQ(path, "");
}
}  // namespace
