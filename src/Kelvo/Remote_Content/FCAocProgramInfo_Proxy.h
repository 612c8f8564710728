// Client of the daemon's app-on-channel programme guide; handed out by FCAPI.
#ifndef KELVO_FCAOCPROGRAMINFO_PROXY_H
#define KELVO_FCAOCPROGRAMINFO_PROXY_H

#include "FCAocProgramInfoAPI.h"

class FCAocProgramInfo_Proxy : public FCAocProgramInfoAPI {
public:
    ~FCAocProgramInfo_Proxy() override;
};

#endif
