#include "FCACRSupport_Proxy.h"

FCACRSupport_Proxy::~FCACRSupport_Proxy() {}
