// The USB host service with scripted devices; records the device class of every call.
#ifndef KELVO_TESTS_FAKE_USB_H
#define KELVO_TESTS_FAKE_USB_H

#include <string>
#include <vector>

struct FakeUsbDevice {
    bool hasMountPath = true;  // false: the service gives no (null) mount path
    std::string mountPath;
    std::string devName;
};

namespace FakeUsb {
// No device, init returning 0, nothing recorded.
void Reset();
void SetInitResult(int result);
// The mass-storage devices in list order; the count is their number unless overridden.
void SetDevices(const std::vector<FakeUsbDevice> &devices);
void SetDeviceCount(int count);  // e.g. a negative error
// "name(class)" or "name" for every call, in order.
std::vector<std::string> Calls();
}  // namespace FakeUsb

#endif
