#include "FCTVLumeControl_Proxy.h"

FCTVLumeControl_Proxy::~FCTVLumeControl_Proxy() {}
