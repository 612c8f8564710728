#include "FCVirtualChannels_Proxy.h"

FCVirtualChannels_Proxy::~FCVirtualChannels_Proxy() {}
