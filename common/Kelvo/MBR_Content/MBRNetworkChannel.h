// Network ("MBR") channels and their programmes: channels the set receives over the network,
// numbered among the broadcast channels.
#ifndef KELVO_MBRNETWORKCHANNEL_H
#define KELVO_MBRNETWORKCHANNEL_H

#include <bitset>
#include <string>

#include <json/json.h>

#define MBR_NETWORKCHANNEL_FAVORITE_MAX 5

class FCMBRNetworkChannel {
public:
    enum EFavorite : int { FAVORITE_1 = 0, FAVORITE_2 = 1, FAVORITE_3 = 2, FAVORITE_4 = 3, FAVORITE_5 = 4 };

    FCMBRNetworkChannel();
    FCMBRNetworkChannel(const FCMBRNetworkChannel &other) = default;
    FCMBRNetworkChannel &operator=(const FCMBRNetworkChannel &other) = default;
    virtual ~FCMBRNetworkChannel() = default;

    bool SetMajor(int major);
    bool SetOriginMajor(int originMajor);
    bool SetMinor(int minor);
    bool SetacRank(int acRank);
    bool SetName(std::string &name);
    bool SetIconUrl(std::string &iconUrl);
    bool SetUrlIndex(std::string &urlIndex);
    bool SetOriginName(std::string &originName);
    bool SetChannelID(int &channelID);
    bool SetRemembered(bool remembered);
    bool SetFavoriteBitSet(std::bitset<MBR_NETWORKCHANNEL_FAVORITE_MAX> &favorites);
    bool SetActivityID(int activityID);
    bool SetDigitalFlag(bool digital);

    int GetMajor() const { return m_major; }
    int GetOriginMajor() const { return m_originMajor; }
    int GetMinor() const { return m_minor; }
    int GetacRank() const { return m_acRank; }
    int GetActivityID() const { return m_activityID; }
    const std::string &GetName() const { return m_name; }
    const std::string &GetOriginName() const { return m_originName; }
    const std::string &GetIconUrl() const { return m_str_icon_url; }
    const std::string &GetUrlIndex() const { return m_str_url_index; }
    const int &GetChannelID() const { return m_channelID; }
    const std::bitset<MBR_NETWORKCHANNEL_FAVORITE_MAX> &GetFavoriteBitSet() const { return m_favorites; }
    bool GetRemembered() const { return m_remembered; }
    bool IsDigital() const { return m_bDigital; }

    bool SetFavorite(EFavorite favorite, bool on);
    bool GetFavorite(EFavorite favorite);
    // Undoes the user's edit of number and name.
    bool Restore();

    static bool MBRNetworkChannelToJson(FCMBRNetworkChannel &channel, Json::Value &out);
    // Missing numbers or flags and a bit text of other characters than '0'/'1' raise.
    static bool JsonToMBRNetworkChannel(const Json::Value &reply, FCMBRNetworkChannel &channel);

    bool operator<(const FCMBRNetworkChannel &other) const;
    bool operator==(const FCMBRNetworkChannel &other) const;
    bool operator!=(const FCMBRNetworkChannel &other) const { return !(*this == other); }

    // Swaps the byte order of a 16-bit text up to its two-zero terminator or length bytes, and
    // ends dst with two zero bytes. Returns the index of the last pair handled (the terminator
    // or the last swapped pair), 1 for a null pointer. dst must hold length + 2 bytes.
    static int m_ConvertEndian(unsigned char *dst, unsigned char *src, int length);

private:
    void m_Initialize();

    int m_major;
    int m_originMajor;
    int m_minor;
    std::string m_name;
    std::string m_originName;
    int m_channelID;
    bool m_remembered;
    std::bitset<MBR_NETWORKCHANNEL_FAVORITE_MAX> m_favorites;
    int m_activityID;
    bool m_bDigital;
    int m_acRank;
    std::string m_str_icon_url;
    std::string m_str_url_index;
};

class FCMBRNetworkProgram {
public:
    FCMBRNetworkProgram() = default;
    FCMBRNetworkProgram(const FCMBRNetworkProgram &other) = default;
    FCMBRNetworkProgram &operator=(const FCMBRNetworkProgram &other) = default;
    virtual ~FCMBRNetworkProgram() = default;

    unsigned long GetStartTime() const { return m_startTime; }
    int GetDuration() const { return m_duration; }
    const std::string &GetTitle() const { return m_title; }
    const int &GetChannelID() const { return m_channelID; }
    const std::string &GetProgramID() const { return m_programID; }

    bool SetStartTime(unsigned long startTime);
    bool SetDuration(int duration);
    bool SetTitle(std::string &title);
    bool SetChannelID(int channelID);
    bool SetProgramID(std::string &programID);

    // Programmes are identified by their programme id alone.
    bool operator<(const FCMBRNetworkProgram &other) const;
    bool operator==(const FCMBRNetworkProgram &other) const;
    bool operator!=(const FCMBRNetworkProgram &other) const { return !(*this == other); }

    static bool MBRNetworkProgramToJson(FCMBRNetworkProgram &program, Json::Value &out);
    static bool JsonToMBRNetworkProgram(const Json::Value &reply, FCMBRNetworkProgram &program);

private:
    unsigned long m_startTime = static_cast<unsigned long>(-1);
    int m_duration = -1;
    std::string m_title;
    int m_channelID = -1;
    std::string m_programID;
};

#endif
