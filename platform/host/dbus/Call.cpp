// host Call: to be written
