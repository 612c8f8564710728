#include "RFNetworkChannelManager_Proxy.h"

FCRFNetworkChannelManager_Proxy::~FCRFNetworkChannelManager_Proxy() {}
