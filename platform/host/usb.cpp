// host usb: to be written
