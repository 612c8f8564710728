/* USB host service. */
#ifndef KELVO_PLATFORM_USB_DEVICE_H
#define KELVO_PLATFORM_USB_DEVICE_H

#ifdef __cplusplus
extern "C" {
#endif

typedef struct usb_device_s *usb_device_h;
typedef struct usb_device_list_s *usb_device_list_h;

typedef enum {
    USB_ERROR_NO_ERROR = 0,
    USB_ERROR_INVALID_PARAMETER = -22,
    USB_ERROR_NOT_FOUND = -2,
    USB_ERROR_OPERATION_FAILED = -1
} usb_error_e;

typedef enum { USB_MASS_STORAGE = 8 } usb_device_class_e;

int usb_device_init(void);
/* Number of connected devices of the class; negative on error. */
int usb_get_connected_device_number(int device_class);
int usb_device_get_device_list(int device_class, usb_device_list_h *list);
int usb_device_list_get_first(usb_device_list_h list, usb_device_h *device);
/* NUL-terminated texts owned by the service; null when the device has none. */
char *usb_device_get_mountpath(usb_device_h device);
char *usb_device_get_devname(usb_device_h device);

#ifdef __cplusplus
}
#endif

#endif
