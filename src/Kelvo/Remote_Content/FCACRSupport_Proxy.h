// Client of the daemon's content-recognition exchange; handed out by FCAPI. It logs under its own
// tag, and a failed call leaves the caller's outputs as they were.
#ifndef KELVO_FCACRSUPPORT_PROXY_H
#define KELVO_FCACRSUPPORT_PROXY_H

#include "FIACRSupportAPI.h"

class FCACRSupport_Proxy : public FIACRSupportAPI {
public:
    bool IsNearProgramBoundary(ESource source, unsigned int sec, bool &near) override;
    bool GetVerifiedMeta(ESource source, AcrVerified &verified, std::string &programSourceId, std::string &programId,
                         unsigned long &utcStart) override;
    bool SetVerifiedACRInfo(ESource source, bool flag, std::string programSourceId, std::string programId) override;

    ~FCACRSupport_Proxy() override;
};

#endif
