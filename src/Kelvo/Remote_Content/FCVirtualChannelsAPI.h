// Programmes, logos and switches of the streaming service's virtual channels.
#ifndef KELVO_FCVIRTUALCHANNELSAPI_H
#define KELVO_FCVIRTUALCHANNELSAPI_H

class FCVirtualChannelsAPI {
public:
    enum EChannelLogoSize : int {
        CHANNEL_LOGO_SIZE_SMALL = 0,
        CHANNEL_LOGO_SIZE_MEDIUM = 1,
        CHANNEL_LOGO_SIZE_LARGE = 2
    };

    enum EPlayerType : int { PLAYER_TYPE_TV = 0, PLAYER_TYPE_PREVIEW = 1 };

    enum EProgramLogoType : int {
        PROGRAM_LOGO_TYPE_THUMBNAIL = 0,
        PROGRAM_LOGO_TYPE_POSTER = 1,
        PROGRAM_LOGO_TYPE_BACKGROUND = 2
    };

    enum EKPIType : int { KPI_TYPE_NONE = -1, KPI_TYPE_VIEW = 0, KPI_TYPE_ACTION = 1 };

    virtual ~FCVirtualChannelsAPI() = default;
};

#endif
