// Client of the daemon's app-on-channel application information; handed out by FCAPI.
#ifndef KELVO_FCAOCAPPINFO_PROXY_H
#define KELVO_FCAOCAPPINFO_PROXY_H

#include "FCAocAppInfoAPI.h"

class FCAocAppInfo_Proxy : public FCAocAppInfoAPI {
public:
    ~FCAocAppInfo_Proxy() override;

    bool CreateAppInfo(const std::string &appInfo) override;
    bool RemoveAppInfo(const std::string &appInfo) override;
    bool UpdateAppInfo(const std::string &appInfo) override;
};

#endif
