// Application information of app-on-channel services, kept by the content daemon.
#ifndef KELVO_FCAOCAPPINFOAPI_H
#define KELVO_FCAOCAPPINFOAPI_H

class FCAocAppInfoAPI {
public:
    virtual ~FCAocAppInfoAPI() {}
};

#endif
