// Client of the daemon's app-on-channel programme guide; handed out by FCAPI.
#ifndef KELVO_FCAOCPROGRAMINFO_PROXY_H
#define KELVO_FCAOCPROGRAMINFO_PROXY_H

#include "FCAocProgramInfoAPI.h"

class FCAocProgramInfo_Proxy : public FCAocProgramInfoAPI {
public:
    ~FCAocProgramInfo_Proxy() override;

    bool RemoveProgramInfo(std::string packageId) override;
    bool UpdateProgramInfo(std::string packageId, unsigned long long serviceId,
                           std::map<unsigned int, FCAocProgramData> &programs) override;
    bool GetProgramInfoList(unsigned long long serviceId, unsigned int startTime, unsigned int duration,
                            std::map<unsigned int, FCAocProgramData> &programs) override;
    bool GetPresentProgramInfo(unsigned long long serviceId, FCAocProgramData &program) override;
    bool GetProgramInfoByIndicator(EProgramIndicator indicator, FCAocProgramId const &id,
                                   FCAocProgramData &program) override;
    bool GetProgramInfo(FCAocProgramId const &id, FCAocProgramData &program) override;
    bool SetVODResumeInfo(unsigned long long serviceId, const std::string &itemId,
                          const unsigned long &position) override;
};

#endif
