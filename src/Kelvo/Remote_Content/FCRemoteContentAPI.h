// Remote content of the daemon: environment, activity selection, channel CRC, version and
// notifications.
#ifndef KELVO_FCREMOTECONTENTAPI_H
#define KELVO_FCREMOTECONTENTAPI_H

#include <string>

#include "FCTypes.h"

class FCRemoteContentAPI {
public:
    virtual ~FCRemoteContentAPI() {}
    virtual bool Reset() = 0;
    virtual bool ToggleKelvoTimeoutTest(bool enable) = 0;
    virtual bool SetRemoteContentEnv(const std::string &country, const std::string &language) = 0;
    virtual bool SetRemoteContentEnvForEmp(const std::string &in, std::string &out) = 0;
    virtual bool GetRemoteContentEnv(std::string &country, std::string &language) = 0;
    virtual bool GetRemoteContentEnv(std::string &inOut) = 0;
    virtual bool GetRemoteContentActivityByTVSourceAndTVMode(int source, int antennaMode, int serviceMode,
                                                             eRemoteContentActivity &activity) = 0;
    virtual bool GetRemoteContentActivityByTVSourceAndTVMode(const std::string &in, std::string &out) = 0;
    virtual bool GetChannelCRC(std::string &crc) = 0;
    virtual bool GetFenvoraVersion(std::string &version) = 0;
    virtual bool NotifyPreviewDownloaderFinish(std::string &in) = 0;
    virtual bool NotifyDVRContentUpdate() = 0;
};

#endif
