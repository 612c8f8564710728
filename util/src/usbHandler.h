// Finds the attached USB mass-storage device and where it is mounted.
#ifndef KELVO_UTIL_USB_HANDLER_H
#define KELVO_UTIL_USB_HANDLER_H

#include <string>

class KelvoUtilUsbHandler {
public:
    // True when at least one mass-storage device is connected.
    bool Prepare();
    // Replaces path with the mount path of the first mass-storage device (empty when the
    // platform gives none). Only meaningful after Prepare said true.
    void CheckUSBConnected(std::string &path);
};

#endif
