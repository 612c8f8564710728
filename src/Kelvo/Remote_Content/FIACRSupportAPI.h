// Exchange of automatic-content-recognition results with the daemon.
#ifndef KELVO_FIACRSUPPORTAPI_H
#define KELVO_FIACRSUPPORTAPI_H

#include <string>

#include "FCTypes.h"

class FIACRSupportAPI {
public:
    enum AcrVerified : int { ACR_NOT_VERIFIED = 0, ACR_VERIFIED = 1 };

    // Whether the programme of the source begins or ends within sec seconds of now.
    virtual bool IsNearProgramBoundary(ESource source, unsigned int sec, bool &near) = 0;
    // What was last recognised on the source, and when that programme started (UTC seconds).
    virtual bool GetVerifiedMeta(ESource source, AcrVerified &verified, std::string &programSourceId,
                                 std::string &programId, unsigned long &utcStart) = 0;
    virtual bool SetVerifiedACRInfo(ESource source, bool flag, std::string programSourceId, std::string programId) = 0;

    // Declared after the operations: this interface keeps its destructor in the last slots.
    virtual ~FIACRSupportAPI() = default;
};

#endif
