// Exchange of automatic-content-recognition results with the daemon.
#ifndef KELVO_FIACRSUPPORTAPI_H
#define KELVO_FIACRSUPPORTAPI_H

class FIACRSupportAPI {
public:
    enum AcrVerified : int { ACR_NOT_VERIFIED = 0, ACR_VERIFIED = 1 };

    virtual ~FIACRSupportAPI() = default;
};

#endif
