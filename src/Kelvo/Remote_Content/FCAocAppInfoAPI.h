// Application information of app-on-channel services, kept by the content daemon. Each text is
// the application information as JSON, handed to the daemon unchanged.
#ifndef KELVO_FCAOCAPPINFOAPI_H
#define KELVO_FCAOCAPPINFOAPI_H

#include <string>

class FCAocAppInfoAPI {
public:
    virtual ~FCAocAppInfoAPI() {}

    virtual bool CreateAppInfo(const std::string &appInfo) = 0;
    virtual bool RemoveAppInfo(const std::string &appInfo) = 0;
    virtual bool UpdateAppInfo(const std::string &appInfo) = 0;
};

#endif
