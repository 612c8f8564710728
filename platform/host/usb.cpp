// Host USB host service. The mass-storage devices are, in this order of preference:
//  - those named in KELVO_USB_MOUNTS, colon-separated entries "mountpath" or
//    "mountpath=devname" (devname defaults to the mount path's last component; an entry with an
//    empty mount path, "=sdb1", is a device the service knows no mount path of);
//  - otherwise the block devices really mounted whose sysfs device path lies under a USB
//    controller (/proc/self/mountinfo, /sys/dev/block/<major>:<minor>), in mount order.
// Only the mass-storage class has devices. Lists, devices and their texts are owned by the
// service and stay valid until the process ends, since callers never release them.
#include "usb-device.h"

#include <climits>
#include <cstdlib>
#include <fstream>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

struct usb_device_s {
    std::string mountPath;
    bool hasMountPath = true;
    std::string devName;
};

struct usb_device_list_s {
    std::vector<usb_device_s *> devices;
};

namespace {
// Deliberately never destroyed: handles given out must outlive every caller.
std::vector<std::unique_ptr<usb_device_s>> &Devices()
{
    static auto *devices = new std::vector<std::unique_ptr<usb_device_s>>();
    return *devices;
}

std::vector<std::unique_ptr<usb_device_list_s>> &Lists()
{
    static auto *lists = new std::vector<std::unique_ptr<usb_device_list_s>>();
    return *lists;
}

struct FoundDevice {
    std::string mountPath;
    bool hasMountPath;
    std::string devName;
};

std::string LastComponent(const std::string &path)
{
    size_t end = path.find_last_not_of('/');
    if (end == std::string::npos)
        return path;
    size_t start = path.rfind('/', end);
    start = start == std::string::npos ? 0 : start + 1;
    return path.substr(start, end - start + 1);
}

std::vector<FoundDevice> FromVariable(const char *value)
{
    std::vector<FoundDevice> devices;
    std::stringstream entries(value);
    std::string entry;
    while (std::getline(entries, entry, ':')) {
        if (entry.empty())
            continue;
        size_t eq = entry.find('=');
        FoundDevice found;
        found.mountPath = entry.substr(0, eq);
        found.hasMountPath = !found.mountPath.empty();
        found.devName = eq != std::string::npos ? entry.substr(eq + 1) : LastComponent(found.mountPath);
        devices.push_back(found);
    }
    return devices;
}

// mountinfo escapes blanks, tabs, newlines and backslashes as \ooo.
std::string Unescape(const std::string &text)
{
    std::string out;
    for (size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '\\' && i + 3 < text.size()) {
            const std::string oct = text.substr(i + 1, 3);
            if (oct.find_first_not_of("01234567") == std::string::npos) {
                out += static_cast<char>(std::stoi(oct, nullptr, 8));
                i += 3;
                continue;
            }
        }
        out += text[i];
    }
    return out;
}

bool IsUnderUsb(const std::string &majorMinor)
{
    const std::string link = "/sys/dev/block/" + majorMinor;
    char resolved[PATH_MAX];
    if (realpath(link.c_str(), resolved) == nullptr)
        return false;
    return std::string(resolved).find("/usb") != std::string::npos;
}

// Returns false when the mount table cannot be read.
bool FromMountTable(std::vector<FoundDevice> &devices)
{
    std::ifstream mountinfo("/proc/self/mountinfo");
    if (!mountinfo)
        return false;
    std::vector<std::string> seen;
    std::string line;
    while (std::getline(mountinfo, line)) {
        std::istringstream fields(line);
        std::string id, parent, majorMinor, root, mountPoint, field;
        if (!(fields >> id >> parent >> majorMinor >> root >> mountPoint))
            continue;
        while (fields >> field && field != "-") {}
        std::string fsType, source;
        fields >> fsType >> source;
        bool known = false;
        for (const std::string &s : seen)
            known = known || s == majorMinor;
        if (known || majorMinor.compare(0, 2, "0:") == 0 || !IsUnderUsb(majorMinor))
            continue;
        seen.push_back(majorMinor);
        std::string devName = Unescape(source);
        if (devName.compare(0, 5, "/dev/") != 0)
            devName = "/dev/" + majorMinor;
        devices.push_back({Unescape(mountPoint), true, devName});
    }
    return true;
}

// Negative on error, like the service's count.
int Scan(std::vector<FoundDevice> &devices)
{
    const char *variable = getenv("KELVO_USB_MOUNTS");
    if (variable != nullptr) {
        devices = FromVariable(variable);
        return static_cast<int>(devices.size());
    }
    if (!FromMountTable(devices))
        return USB_ERROR_OPERATION_FAILED;
    return static_cast<int>(devices.size());
}
}  // namespace

extern "C" int usb_device_init(void)
{
    return USB_ERROR_NO_ERROR;
}

extern "C" int usb_get_connected_device_number(int device_class)
{
    if (device_class != USB_MASS_STORAGE)
        return 0;
    std::vector<FoundDevice> devices;
    return Scan(devices);
}

extern "C" int usb_device_get_device_list(int device_class, usb_device_list_h *list)
{
    if (list == nullptr)
        return USB_ERROR_INVALID_PARAMETER;
    std::vector<FoundDevice> devices;
    if (device_class == USB_MASS_STORAGE && Scan(devices) < 0)
        return USB_ERROR_OPERATION_FAILED;
    auto made = std::make_unique<usb_device_list_s>();
    for (const FoundDevice &found : devices) {
        auto device = std::make_unique<usb_device_s>();
        device->mountPath = found.mountPath;
        device->hasMountPath = found.hasMountPath;
        device->devName = found.devName;
        made->devices.push_back(device.get());
        Devices().push_back(std::move(device));
    }
    *list = made.get();
    Lists().push_back(std::move(made));
    return USB_ERROR_NO_ERROR;
}

extern "C" int usb_device_list_get_first(usb_device_list_h list, usb_device_h *device)
{
    if (device == nullptr)
        return USB_ERROR_INVALID_PARAMETER;
    *device = nullptr;
    if (list == nullptr)
        return USB_ERROR_INVALID_PARAMETER;
    if (list->devices.empty())
        return USB_ERROR_NOT_FOUND;
    *device = list->devices.front();
    return USB_ERROR_NO_ERROR;
}

extern "C" char *usb_device_get_mountpath(usb_device_h device)
{
    if (device == nullptr || !device->hasMountPath)
        return nullptr;
    return &device->mountPath[0];
}

extern "C" char *usb_device_get_devname(usb_device_h device)
{
    if (device == nullptr)
        return nullptr;
    return &device->devName[0];
}
