// The reply's "ret" is read by the typed operations, the string forms, the notifications, the
// client entry's Reset and FCJsonHelper itself: every one of them must answer alike for the same
// reply, since a client may use either form of an operation.
#include <functional>
#include <string>

#include <gtest/gtest.h>

#include "FCJsonHelper.h"
#include "FCRemoteContentOnTV_Proxy.h"
#include "FakeCall.h"
#include "FenvoraDefine.h"

namespace {

struct Reader {
    const char *name;
    const char *method;  // the wire method whose reply it reads
    std::function<bool()> read;
};

TEST(ReturnBoolean, EveryReaderOfRetAnswersAlike)
{
    const struct {
        const char *reply;
        bool yes;
    } cases[] = {
        {R"({"ret":true})", true},
        {R"({"ret":1})", true},
        {R"({"ret":-1})", true},
        {R"({"ret":0.5})", true},
        {R"({"ret":0})", false},
        {R"({"ret":false})", false},
        {R"({"ret":"true"})", false},
        {R"({"ret":null})", false},
        {R"({"other":true})", false},
        {R"({"ret":[true]})", false},
        {R"({"ret":{"ret":true}})", false},
        {R"([{"ret":true}])", false},
        {"1", false},
    };
    FCRemoteContentOnTV_Proxy remote;
    FCMatchFinder_Proxy finder;
    std::string text;
    const Reader readers[] = {
        {"typed form", "SetRemoteContentEnv", [&] { return remote.SetRemoteContentEnv("kr", "ko"); }},
        {"string form", "GetTCServiceIdByProgramSourceID",
         [&] { return finder.GetTCServiceIdByProgramSourceID(R"({"ProgramSourceID":"s"})", text); }},
        {"notification", "NotifyDVRContentUpdate", [&] { return remote.NotifyDVRContentUpdate(); }},
        {"client entry", "Reset", [] { return FCAPI::Reset(); }},
    };
    for (const auto &c : cases) {
        std::string reply = c.reply;
        EXPECT_EQ(FCJsonHelper::ParseReturnBoolean(reply), c.yes) << c.reply;
        for (const Reader &reader : readers) {
            FakeCall::Reset();
            FakeCall::Script(reader.method, FakeCall::Answer::Text(c.reply));
            EXPECT_EQ(reader.read(), c.yes) << reader.name << " on " << c.reply;
        }
    }
}

}  // namespace
