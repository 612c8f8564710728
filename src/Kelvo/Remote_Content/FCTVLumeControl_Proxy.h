// Client of the streaming service's web application and rating-lock control; handed out by FCAPI.
#ifndef KELVO_FCTVLUMECONTROL_PROXY_H
#define KELVO_FCTVLUMECONTROL_PROXY_H

#include "FCTVLumeAPI.h"

class FCTVLumeControl_Proxy : public FCTVLumeAPI {
public:
    ~FCTVLumeControl_Proxy() override;
};

#endif
