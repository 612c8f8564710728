#include "FCAocAppInfo_Proxy.h"

FCAocAppInfo_Proxy::~FCAocAppInfo_Proxy() {}
