// host notification: to be written
