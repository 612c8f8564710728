// Programme guide of app-on-channel services, kept by the content daemon: what the applications
// publish per package, read back per service, and where a viewer stopped in an on-demand item.
#ifndef KELVO_FCAOCPROGRAMINFOAPI_H
#define KELVO_FCAOCPROGRAMINFOAPI_H

#include <map>
#include <string>

#include "FCAocDataUtil.h"
#include "FCTypes.h"

class FCAocProgramInfoAPI {
public:
    virtual ~FCAocProgramInfoAPI() {}

    virtual bool RemoveProgramInfo(std::string packageId) = 0;
    // The package's programmes of the service, keyed by start time.
    virtual bool UpdateProgramInfo(std::string packageId, unsigned long long serviceId,
                                   std::map<unsigned int, FCAocProgramData> &programs) = 0;
    // Programmes of the service starting in [startTime, startTime + duration), added to programs.
    virtual bool GetProgramInfoList(unsigned long long serviceId, unsigned int startTime, unsigned int duration,
                                    std::map<unsigned int, FCAocProgramData> &programs) = 0;
    virtual bool GetPresentProgramInfo(unsigned long long serviceId, FCAocProgramData &program) = 0;
    // The programme before, at or after the given one.
    virtual bool GetProgramInfoByIndicator(EProgramIndicator indicator, FCAocProgramId const &id,
                                           FCAocProgramData &program) = 0;
    virtual bool GetProgramInfo(FCAocProgramId const &id, FCAocProgramData &program) = 0;
    virtual bool SetVODResumeInfo(unsigned long long serviceId, const std::string &itemId,
                                  const unsigned long &position) = 0;
};

#endif
