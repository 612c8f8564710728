#include "FakeUsb.h"

#include <deque>
#include <optional>

#include "usb-device.h"

struct usb_device_s {
    FakeUsbDevice device;
};

struct usb_device_list_s {
    std::vector<usb_device_s> devices;
};

namespace {
int g_initResult = USB_ERROR_NO_ERROR;
std::vector<FakeUsbDevice> g_devices;
std::optional<int> g_count;
// Lists stay valid to the end of the process, as the service's own do.
std::deque<usb_device_list_s> g_lists;
}  // namespace

extern "C" int usb_device_init(void)
{
    return g_initResult;
}

extern "C" int usb_get_connected_device_number(int device_class)
{
    if (device_class != USB_MASS_STORAGE)
        return 0;
    return g_count ? *g_count : static_cast<int>(g_devices.size());
}

extern "C" int usb_device_get_device_list(int device_class, usb_device_list_h *list)
{
    g_lists.emplace_back();
    if (device_class == USB_MASS_STORAGE)
        for (const FakeUsbDevice &device : g_devices)
            g_lists.back().devices.push_back({device});
    *list = &g_lists.back();
    return USB_ERROR_NO_ERROR;
}

extern "C" int usb_device_list_get_first(usb_device_list_h list, usb_device_h *device)
{
    *device = list != nullptr && !list->devices.empty() ? &list->devices.front() : nullptr;
    return *device != nullptr ? USB_ERROR_NO_ERROR : USB_ERROR_NOT_FOUND;
}

extern "C" char *usb_device_get_mountpath(usb_device_h device)
{
    return device != nullptr && !device->device.mountPath.empty() ? &device->device.mountPath[0] : nullptr;
}

extern "C" char *usb_device_get_devname(usb_device_h device)
{
    return device != nullptr ? &device->device.devName[0] : nullptr;
}

namespace FakeUsb {
void Reset()
{
    g_initResult = USB_ERROR_NO_ERROR;
    g_devices.clear();
    g_count.reset();
}

void SetInitResult(int result)
{
    g_initResult = result;
}
void SetDevices(const std::vector<FakeUsbDevice> &devices)
{
    g_devices = devices;
}
void SetDeviceCount(int count)
{
    g_count = count;
}
}  // namespace FakeUsb
