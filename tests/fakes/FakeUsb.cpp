#include "FakeUsb.h"

#include "usb-device.h"

#include <memory>

struct usb_device_s {
    FakeUsbDevice device;
};

struct usb_device_list_s {
    std::vector<usb_device_s *> devices;
};

namespace {
int g_initResult = USB_ERROR_NO_ERROR;
std::vector<FakeUsbDevice> g_devices;
bool g_countSet = false;
int g_count = 0;
std::vector<std::string> g_calls;
// Handles live to the end of the process, as the service's own do.
std::vector<std::unique_ptr<usb_device_s>> *g_handles = new std::vector<std::unique_ptr<usb_device_s>>();
std::vector<std::unique_ptr<usb_device_list_s>> *g_lists = new std::vector<std::unique_ptr<usb_device_list_s>>();

void Record(const std::string &call) { g_calls.push_back(call); }
}  // namespace

extern "C" int usb_device_init(void)
{
    Record("usb_device_init");
    return g_initResult;
}

extern "C" int usb_get_connected_device_number(int device_class)
{
    Record("usb_get_connected_device_number(" + std::to_string(device_class) + ")");
    if (device_class != USB_MASS_STORAGE)
        return 0;
    return g_countSet ? g_count : static_cast<int>(g_devices.size());
}

extern "C" int usb_device_get_device_list(int device_class, usb_device_list_h *list)
{
    Record("usb_device_get_device_list(" + std::to_string(device_class) + ")");
    auto made = std::make_unique<usb_device_list_s>();
    if (device_class == USB_MASS_STORAGE) {
        for (const FakeUsbDevice &device : g_devices) {
            g_handles->push_back(std::make_unique<usb_device_s>(usb_device_s{device}));
            made->devices.push_back(g_handles->back().get());
        }
    }
    *list = made.get();
    g_lists->push_back(std::move(made));
    return USB_ERROR_NO_ERROR;
}

extern "C" int usb_device_list_get_first(usb_device_list_h list, usb_device_h *device)
{
    Record("usb_device_list_get_first");
    *device = list != nullptr && !list->devices.empty() ? list->devices.front() : nullptr;
    return *device != nullptr ? USB_ERROR_NO_ERROR : USB_ERROR_NOT_FOUND;
}

extern "C" char *usb_device_get_mountpath(usb_device_h device)
{
    Record("usb_device_get_mountpath");
    if (device == nullptr || !device->device.hasMountPath)
        return nullptr;
    return &device->device.mountPath[0];
}

extern "C" char *usb_device_get_devname(usb_device_h device)
{
    Record("usb_device_get_devname");
    return device != nullptr ? &device->device.devName[0] : nullptr;
}

namespace FakeUsb {
void Reset()
{
    g_initResult = USB_ERROR_NO_ERROR;
    g_devices.clear();
    g_countSet = false;
    g_count = 0;
    g_calls.clear();
}

void SetInitResult(int result) { g_initResult = result; }
void SetDevices(const std::vector<FakeUsbDevice> &devices) { g_devices = devices; }

void SetDeviceCount(int count)
{
    g_countSet = true;
    g_count = count;
}

std::vector<std::string> Calls() { return g_calls; }
}  // namespace FakeUsb
