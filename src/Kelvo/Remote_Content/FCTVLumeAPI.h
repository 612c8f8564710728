// Control of the streaming service's web application and of its rating lock.
#ifndef KELVO_FCTVLUMEAPI_H
#define KELVO_FCTVLUMEAPI_H

enum eTVLumeWebAppVisible : int { TVLUME_WEBAPP_HIDE = 0, TVLUME_WEBAPP_SHOW = 1 };

class FCTVLumeAPI {
public:
    virtual ~FCTVLumeAPI() = default;
};

#endif
