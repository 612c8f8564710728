// The USB host service with scripted mass-storage devices.
#ifndef KELVO_TESTS_FAKE_USB_H
#define KELVO_TESTS_FAKE_USB_H

#include <string>
#include <vector>

struct FakeUsbDevice {
    std::string mountPath;  // empty: the service knows no mount path (it gives null)
    std::string devName;
};

namespace FakeUsb {
// No device, init answering 0.
void Reset();
void SetInitResult(int result);
// The devices in list order; the count is their number unless SetDeviceCount says otherwise.
void SetDevices(const std::vector<FakeUsbDevice> &devices);
void SetDeviceCount(int count);
}  // namespace FakeUsb

#endif
