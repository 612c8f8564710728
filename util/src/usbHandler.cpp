#include "usbHandler.h"

#include "KelvoUtilLog.h"
#include "usb-device.h"

bool KelvoUtilUsbHandler::Prepare()
{
    int ret = usb_device_init();
    KELVO_UTIL_LOG("usb_device_init return = %d", ret);
    int count = usb_get_connected_device_number(USB_MASS_STORAGE);
    KELVO_UTIL_LOG("device number is %d", count);
    return count > 0;
}

void KelvoUtilUsbHandler::CheckUSBConnected(std::string &path)
{
    KELVO_UTIL_LOG("usb is connected now");
    // Prepare having counted a device is taken as enough: the results below are not checked,
    // and a device without a mount path leaves the path empty.
    usb_device_list_h list = nullptr;
    usb_device_h device = nullptr;
    usb_device_get_device_list(USB_MASS_STORAGE, &list);
    usb_device_list_get_first(list, &device);

    const char *mount = usb_device_get_mountpath(device);
    const char *name = usb_device_get_devname(device);
    KELVO_UTIL_LOG("mount path is %s, device name is %s", mount != nullptr ? mount : "(null)",
                   name != nullptr ? name : "(null)");
    path.assign(mount != nullptr ? mount : "");
}
