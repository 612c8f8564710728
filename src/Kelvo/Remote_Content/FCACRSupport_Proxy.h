// Client of the daemon's content-recognition exchange; handed out by FCAPI.
#ifndef KELVO_FCACRSUPPORT_PROXY_H
#define KELVO_FCACRSUPPORT_PROXY_H

#include "FIACRSupportAPI.h"

class FCACRSupport_Proxy : public FIACRSupportAPI {
public:
    ~FCACRSupport_Proxy() override;
};

#endif
