// host dlog: to be written
