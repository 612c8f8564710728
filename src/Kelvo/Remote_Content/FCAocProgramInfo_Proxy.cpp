#include "FCAocProgramInfo_Proxy.h"

FCAocProgramInfo_Proxy::~FCAocProgramInfo_Proxy() {}
