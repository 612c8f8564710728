// App-on-channel data is outside text twice over: the extra data a service carries (UTF-16 in the
// middleware, then JSON) and the programme guide an application publishes through the daemon. The
// input is read as both: as big-endian UTF-16 and as UTF-8 through the conversions, and as JSON by
// every app-on-channel reader, which promise never to raise (they are called bare). What a reader
// filled must write back without trouble.
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <map>
#include <string>
#include <vector>

#include "FCAocDataUtil.h"
#include "FCJsonHelper.h"
#include "FakeDlog.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const std::string text(reinterpret_cast<const char *>(data), size);

    FCString16 units(size / 2, 0);
    if (!units.empty())
        std::memcpy(&units[0], data, units.size() * 2);
    const std::string utf8 = FCAocDataHelper::ToUtf8(units);
    FCAocDataHelper::ToUtf16BE(utf8);
    FCAocDataHelper::ToUtf16BE(text);
    // The raw conversion with an output buffer of any size the input's first byte picks.
    std::vector<char> in(text.begin(), text.end());
    std::vector<char> out(size > 0 ? data[0] : 1);
    FCAocDataHelper::IconvString("UTF-8", "UTF-16BE", out.data(), static_cast<unsigned int>(out.size()), in.data(),
                                 static_cast<unsigned int>(in.size()));

    FCAocExtraData extra("pkg");
    FCAocExtraData fromUtf16("pkg");
    extra.FromJsonStr(text);
    fromUtf16.FromJsonStr(utf8);
    FCAocDataHelper::GetRealDataFromAocExtraData(extra, "pkg", extra.m_providerFlag);
    Json::Value written;
    extra.ToJson(written);

    Json::Value reply;
    if (FCJsonHelper::ParseToJson(text, reply)) {
        Json::Value copy = reply;
        FCAocProgramData program;
        program.FromJson(copy);
        FCAocProgramData fromContent("pkg", reply);
        FCAppChannelData channel;
        FCAppChannelData::FromJson(reply, channel);
        channel.SetStreamType(channel.m_major);
        FCAocProgramId id;
        copy = reply;
        FCAocProgramId::FromJson(copy, id);
        std::map<unsigned int, FCAocProgramData> programs;
        copy = reply;
        FCAocMarshal::JsonToAocProgramMap(copy, programs);
        Json::Value back;
        program.ToJson(back);
        FCAppChannelData::ToJson(channel, back);
        FCAocProgramId::ToJson(id, back);
        FCAocMarshal::AocProgramMapToJson(programs, back);
        program.ToString();
        id.ToString();
        channel.ToString();
    }
    FakeDlog::Clear();
    return 0;
}
