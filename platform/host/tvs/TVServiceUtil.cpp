#include "TVServiceAPI.h"
IUtil *TVServiceAPI::CreateUtil() { return nullptr; }
