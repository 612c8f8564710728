#include "TVServiceAPI.h"
IService *TVServiceAPI::CreateService() { return nullptr; }
IServiceGuide *TVServiceAPI::CreateServiceGuide() { return nullptr; }
