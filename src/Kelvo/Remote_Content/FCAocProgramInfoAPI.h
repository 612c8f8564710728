// Programme guide of app-on-channel services, kept by the content daemon.
#ifndef KELVO_FCAOCPROGRAMINFOAPI_H
#define KELVO_FCAOCPROGRAMINFOAPI_H

class FCAocProgramInfoAPI {
public:
    virtual ~FCAocProgramInfoAPI() {}
};

#endif
