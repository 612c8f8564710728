// The introspection data the content daemon simulator serves (tools/daemon-sim/KelvoDaemon.xml)
// against its method table and the bus names the host uses.
#include <fstream>
#include <regex>
#include <set>
#include <sstream>
#include <string>

#include <gtest/gtest.h>

#include "KelvoDaemonBus.h"
#include "SimContent.h"

namespace {

std::string ReadXml()
{
    std::ifstream in(KELVO_DAEMON_XML);
    std::stringstream text;
    text << in.rdbuf();
    return text.str();
}

// The methods declared inside <interface name="NAME">...</interface>.
std::set<std::string> MethodsOf(const std::string &xml, const std::string &name)
{
    std::set<std::string> methods;
    size_t begin = xml.find("<interface name=\"" + name + "\">");
    if (begin == std::string::npos)
        return methods;
    size_t end = xml.find("</interface>", begin);
    std::string body = xml.substr(begin, end - begin);
    std::regex method("<method name=\"([A-Za-z_][A-Za-z0-9_]*)\"");
    for (std::sregex_iterator it(body.begin(), body.end(), method), last; it != last; ++it)
        methods.insert((*it)[1]);
    return methods;
}

TEST(DaemonIntrospection, ProviderInterfaceListsExactlyTheSimulatorsMethods)
{
    std::vector<std::string> table = KelvoSimContent::Methods();
    std::set<std::string> fromTable(table.begin(), table.end());
    ASSERT_FALSE(fromTable.empty());
    EXPECT_EQ(MethodsOf(ReadXml(), KelvoDaemonBus::kProviderInterface), fromTable);
}

TEST(DaemonIntrospection, ControlInterfaceIsDeclaredUnderItsBusName)
{
    EXPECT_EQ(MethodsOf(ReadXml(), KelvoDaemonBus::kControlInterface),
              (std::set<std::string>{"ClearRecords", "ClearScript", "EmitEvent", "GetRecords", "SetFixture",
                                     "SetScript", "SetOlder"}));
}

TEST(DaemonIntrospection, EveryProviderMethodTakesOneStringAndReturnsOne)
{
    std::string xml = ReadXml();
    std::regex method("<method name=\"([A-Za-z0-9_]+)\">(.*?)</method>");
    size_t begin = xml.find(std::string("<interface name=\"") + KelvoDaemonBus::kProviderInterface);
    std::string body = xml.substr(begin, xml.find("</interface>", begin) - begin);
    int checked = 0;
    for (std::sregex_iterator it(body.begin(), body.end(), method), last; it != last; ++it, ++checked) {
        EXPECT_EQ((*it)[2].str(), "<arg name=\"argument\" type=\"s\" direction=\"in\"/>"
                                  "<arg name=\"reply\" type=\"s\" direction=\"out\"/>")
            << (*it)[1];
    }
    EXPECT_EQ(checked, static_cast<int>(KelvoSimContent::Methods().size()));
}

}  // namespace
