#include "MBRNetworkChannelManager_Proxy.h"

FCMBRNetworkChannelManager_Proxy::~FCMBRNetworkChannelManager_Proxy() {}
