// The content daemon simulator says it is ready before its fixture has loaded: the first call
// still gets the answer of the whole fixture, and a fixture that cannot load still ends it.
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <json/json.h>
#include <sys/wait.h>
#include <systemd/sd-bus.h>
#include <unistd.h>

#include "KelvoDaemonBus.h"
#include "KelvoTestBus.h"
#include "SimContent.h"

namespace {

// Enough programmes that the load lasts well beyond the moment the daemon is ready.
std::string LargeFixture(int sources, int programmesPerSource)
{
    Json::Value fixture(Json::objectValue);
    Json::Value &programs = fixture["programs"];
    for (int s = 0; s < sources; ++s) {
        Json::Value &list = programs["S" + std::to_string(s)];
        list = Json::Value(Json::arrayValue);
        for (int p = 0; p < programmesPerSource; ++p) {
            Json::Value programme;
            programme["utc start time"] = 1000 + 600 * p;
            programme["duration"] = 600;
            programme["title"] = "Programme " + std::to_string(p) + " of source " + std::to_string(s);
            programme["description"] = std::string(200, static_cast<char>('a' + p % 26));
            list.append(programme);
        }
    }
    return KelvoSimContent::ToCompactText(fixture);
}

std::string ProgramMapRequest(int sources)
{
    Json::Value request;
    for (int s = 0; s < sources; ++s)
        request["sourceIDArray"].append("S" + std::to_string(s));
    request["utc start time"] = 0;
    request["duration"] = 86400;
    return KelvoSimContent::ToCompactText(request);
}

TEST(DaemonLoad, ACallRightAfterReadyGetsTheAnswerOfTheWholeFixture)
{
    const int kSources = 2000;
    const std::string fixture = LargeFixture(kSources, 12);
    const std::string request = ProgramMapRequest(kSources);
    std::string expected;
    {
        Json::Value parsed;
        ASSERT_TRUE(Json::Reader().parse(fixture, parsed));
        KelvoSimContent content;
        std::string error;
        ASSERT_TRUE(content.Load(parsed, error)) << error;
        ASSERT_TRUE(content.AnswerText("GetProgramMap", request, expected));
    }

    KelvoTestBus bus(fixture);
    ASSERT_TRUE(bus.Ready());
    sd_bus *connection = nullptr;
    ASSERT_GE(sd_bus_new(&connection), 0);
    ASSERT_GE(sd_bus_set_address(connection, bus.Address().c_str()), 0);
    ASSERT_GE(sd_bus_set_bus_client(connection, 1), 0);
    ASSERT_GE(sd_bus_start(connection), 0);
    sd_bus_error error = SD_BUS_ERROR_NULL;
    sd_bus_message *reply = nullptr;
    int r =
        sd_bus_call_method(connection, KelvoDaemonBus::kBusName, KelvoDaemonBus::kObjectPath,
                           KelvoDaemonBus::kProviderInterface, "GetProgramMap", &error, &reply, "s", request.c_str());
    EXPECT_GE(r, 0) << (error.message ? error.message : "");
    const char *text = nullptr;
    if (r >= 0) {
        EXPECT_GE(sd_bus_message_read(reply, "s", &text), 0);
    }
    const std::string answer = text ? text : "";
    // Compared whole, but not printed whole: the answer is megabytes long.
    EXPECT_TRUE(answer == expected) << "an answer of " << answer.size() << " bytes, the whole fixture's has "
                                    << expected.size() << ": " << answer.substr(0, 200);
    sd_bus_error_free(&error);
    sd_bus_message_unref(reply);
    sd_bus_flush_close_unref(connection);

    const KelvoTestBus::RecordList records = bus.Records();
    ASSERT_EQ(records.size(), 1u);
    EXPECT_EQ(records[0].first, "GetProgramMap");
    EXPECT_EQ(records[0].second, request);
}

// A fixture that is not there fails before the daemon is ready; one that is there but does not
// load ends it once its load has ended, whether or not a call came.
TEST(DaemonLoad, AFixtureThatCannotLoadEndsTheDaemonWithItsReason)
{
    KelvoTestBus bus("{}", false);
    ASSERT_TRUE(bus.Ready());
    std::string folder = (std::filesystem::temp_directory_path() / "kelvo-daemon-load-XXXXXX").string();
    ASSERT_NE(mkdtemp(folder.data()), nullptr);
    const std::string path = folder + "/case.json";
    const struct {
        const char *name;
        const char *text;  // nullptr: no file
        std::string ready;
        std::string message;  // how its standard error begins
    } cases[] = {
        {"missing", nullptr, "", "kelvo-daemon-sim: cannot read " + path + ": No such file or directory\n"},
        {"not JSON", "{\"programs\": [", "ready", "kelvo-daemon-sim: " + path + ": * Line 1"},
        {"a member of the wrong kind", "{\"programs\": 5}", "ready",
         "kelvo-daemon-sim: " + path + ": fixture member \"programs\" has the wrong kind\n"},
        {"programmes that are not a list", "{\"programs\": {\"S1\": {}}}", "ready",
         "kelvo-daemon-sim: " + path + ": programmes of source \"S1\" are not an array\n"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        unlink(path.c_str());
        if (c.text)
            std::ofstream(path) << c.text;
        int fds[2];
        ASSERT_EQ(pipe(fds), 0);
        const std::string readyFd = std::to_string(fds[1]);
        const std::string log = folder + "/case.log";
        pid_t pid = fork();
        if (pid == 0) {
            int out = open(log.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
            dup2(out, STDERR_FILENO);
            close(fds[0]);
            alarm(60);  // a daemon that never ends fails the case instead of holding up the suite
            execl(KELVO_DAEMON_SIM, KELVO_DAEMON_SIM, "--fixture", path.c_str(), "--address", bus.Address().c_str(),
                  "--ready-fd", readyFd.c_str(), nullptr);
            _exit(127);
        }
        close(fds[1]);
        std::string ready;
        for (char ch; read(fds[0], &ch, 1) == 1 && ch != '\n';)
            ready += ch;
        close(fds[0]);
        int status = 0;
        ASSERT_EQ(waitpid(pid, &status, 0), pid);
        EXPECT_EQ(ready, c.ready);
        ASSERT_TRUE(WIFEXITED(status));
        EXPECT_EQ(WEXITSTATUS(status), 2);
        std::ifstream in(log);
        const std::string message((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
        EXPECT_EQ(message.substr(0, c.message.size()), c.message);
    }
    std::filesystem::remove_all(folder);
}

}  // namespace
