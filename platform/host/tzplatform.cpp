// host tzplatform: to be written
