// The runner's default view of a run: kelvo-util's log lines in, the milestones a person reads out.
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

#include "Milestones.h"

namespace {

std::string Shown(const std::vector<std::string> &log, bool live)
{
    int fd = memfd_create("kelvo-milestones", 0);
    KelvoMilestones milestones(fd, live);
    for (const auto &line : log)
        milestones.Line(line + "\n");
    milestones.Finish();
    std::string text;
    char buffer[4096];
    for (off_t at = 0;;) {
        ssize_t n = pread(fd, buffer, sizeof buffer, at);
        if (n <= 0)
            break;
        text.append(buffer, static_cast<size_t>(n));
        at += n;
    }
    close(fd);
    return text;
}

std::string Util(const std::string &message)
{
    return "W/kelvo-util(6): dataHandler.cpp: Fn(1) > " + message;
}

const std::string kMount = "/media/USBDriveA1";

struct Case {
    const char *name;
    std::vector<std::string> log;
    std::string shown;
};

TEST(Milestones, WhatAPersonSeesOfARun)
{
    const std::string row = Util("end");
    const std::vector<Case> cases = {
        {"a dump, with a failed row, an unmatched source and sources the TV lacks",
         {Util("kelvo-util run starts by activation ....."),
          Util("mount path is /media/USBDriveA1, device name is USBDriveA1"),
          Util("kelvo-util 222 ....."),
          Util("Make Dump DB Folder"),
          Util("Start Dump Kelvo DB"),
          "I/TVS(6): backup /media/USBDriveA1/DumpMWDB: 5",
          "D/kelvo-util(6): dbQueryHelper.cpp: GetCreateTableQuery(153) > query =CREATE TABLE",
          Util("Start to Backup ProgramData of RF channels"),
          Util("RF channels size : 2 "),
          Util("service Id: 11 No:5-0 ,type:4"),
          Util("serviceId:11 , RF Programs size : 2 "),
          Util("query: INSERT OR IGNORE INTO programRF VALUES (11, 'x')"),
          row,
          Util("Insert error, ret:1"),
          Util("serviceId:12 , RF Programs size : 1 "),
          row,
          Util("End to Backup ProgramData of RF channels"),
          Util("Start to Backup ProgramData of Meta"),
          Util("source Id size:3"),
          Util("Meta Programs by source Id size : 2 "),
          Util("source Id : 10756 , tvsServiceId:1154223329503121409"),
          row,
          Util("source Id : 98566 , tvsServiceId:18446744073709551615"),
          row,
          row,
          Util("End to Backup ProgramData of Meta"),
          "/usr/bin/cp: cannot stat '/opt/usr/globalapps/tvs-iss/data/*': No such file or directory",
          Util("dump result=0,"),
          Util("kelvo-util 555 ....."),
          Util("m_notihandle:[0x5575]"),
          Util("EResultType : [1], [ChannelMap Dump Success]"),
          Util("kelvo-util 666 .....")},
         "kelvo-util started\n"
         "USB storage: /media/USBDriveA1 (device USBDriveA1)\n"
         "branch: dump\n"
         "TVS backup into /media/USBDriveA1/DumpMWDB: done (result 5)\n"
         "broadcast export: 2/2 services, 2 rows, 1 failed\n"
         "metadata export: 2/2 sources with programmes (of 3, 1 unmatched), 3 rows\n"
         "copy of the middleware's data to the stick: status 0 (1 source this TV does not have)\n"
         "result posted: ChannelMap Dump Success\n"},
        // kelvo-util's log is written in batches, cp's lines are not.
        {"a dump whose copy names a source before the metadata export's last line",
         {Util("Start to Backup ProgramData of Meta"), Util("source Id size:1"),
          "/usr/bin/cp: cannot stat '/opt/usr/globalapps/tvs-iss/data/*': No such file or directory",
          Util("End to Backup ProgramData of Meta"),
          "/usr/bin/cp: cannot stat '/opt/dbspace/UpdateTransponderDataBase.sei': No such file or directory",
          Util("dump result=0,")},
         "metadata export: 0/0 sources with programmes (of 1, 0 unmatched), 0 rows\n"
         "copy of the middleware's data to the stick: status 0 (2 sources this TV does not have)\n"},
        {"no storage",
         {Util("usb_device_init return = 0"), Util("device number is 0"), Util("kelvo-util 111 .....")},
         "branch: no USB storage (reported as a failed dump)\n"},
        {"a failed TVS backup",
         {Util("Start Dump Kelvo DB"), "I/TVS(6): backup /media/USBDriveA1/DumpMWDB: -1"},
         "branch: dump\nTVS backup into /media/USBDriveA1/DumpMWDB: FAILED (result -1)\n"},
        // The failure texts of the display list and of the post name each other's call.
        {"the post failed",
         {Util("EResultType : [1], [ChannelMap Dump Success]"), Util("notification_set_display_applist failed[-5]")},
         "result posted: ChannelMap Dump Success\nresult: posting the notification failed (-5)\n"},
        {"the display list failed, the post did not",
         {Util("EResultType : [3], [Restore ChannelMap Success]"), Util("notification_post failed[-5]")},
         "result posted: Restore ChannelMap Success\n"},
        {"a restore: both copies, the clock, then the middleware",
         {Util("Start Restore Kelvo DB"),
          Util("restoreCommand /usr/bin/cp -r /media/USBDriveA1/RestoreMWDB/*.db /opt/x/data;sync"),
          Util("restore return 0"), Util("symbolic link removed: /opt/x/data/evil.db"),
          Util("restoreCommand /usr/bin/cp -r /media/USBDriveA1/RestoreMWDB/*.json /opt/x/data;sync"),
          Util("restore return 256"), Util("restore time is 1700000000"),
          "I/TVS(6): restore /media/USBDriveA1/RestoreMWDB: 1",
          Util("EResultType : [3], [Restore ChannelMap Success]")},
         "branch: restore\n"
         "copy of RestoreMWDB/*.db to the content daemon: status 0\n"
         "symbolic link removed: /opt/x/data/evil.db\n"
         "copy of RestoreMWDB/*.json to the content daemon: status 256\n"
         "clock from time.txt: 1700000000\n"
         "TVS restore from /media/USBDriveA1/RestoreMWDB: done (result 1)\n"
         "result posted: Restore ChannelMap Success\n"},
        {"a time file that is not a number, until the time limit",
         {Util("Start Restore Kelvo DB"), Util("restore time is 0"), Util("restore time is 0"),
          Util("restore time is 0")},
         "branch: restore\nclock from time.txt: 0 (read 3 times: the file does not hold one number)\n"},
        {"a run that ends inside an export",
         {Util("Start to Backup ProgramData of RF channels"), Util("RF channels size : 9 "),
          Util("serviceId:11 , RF Programs size : 2 "), row},
         "broadcast export: 1/9 services, 1 row (did not finish)\n"},
        {"refusals of the guards",
         {Util("mount path [/media/a b] refused: it holds a character other than A-Z a-z 0-9 / . _ + -"),
          Util("restore folder [/media/x/RestoreMWDB] refused: it is a symbolic link, and the restore reads only "
               "what lies on the storage")},
         "mount path [/media/a b] refused: it holds a character other than A-Z a-z 0-9 / . _ + -\n"
         "restore folder [/media/x/RestoreMWDB] refused: it is a symbolic link, and the restore reads only what "
         "lies on the storage\n"},
        {"a cut log",
         {"\u2026 log truncated \u2026"},
         "log truncated: the rest of the run is not kept (--log-limit)\n"},
        {"a sanitizer's report",
         {"util/src/x.cpp:3:5: runtime error: signed integer overflow"},
         "sanitizer: util/src/x.cpp:3:5: runtime error: signed integer overflow\n"},
        {"lines of a flood and lines of others",
         {row, Util("UTC Current Time = 1"), "random text", "W/other(1): x > end"},
         ""},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(Shown(c.log, false), c.shown);
    }
}

// On a terminal a count is redrawn in place; what stays on the screen is the plain text.
TEST(Milestones, ATerminalSeesTheCountGrowInPlace)
{
    std::vector<std::string> log = {Util("Start to Backup ProgramData of RF channels"), Util("RF channels size : 1 "),
                                    Util("serviceId:11 , RF Programs size : 300 ")};
    log.insert(log.end(), 300, Util("end"));
    log.push_back(Util("End to Backup ProgramData of RF channels"));
    log.push_back(Util("EResultType : [1], [ChannelMap Dump Success]"));
    const std::string shown = Shown(log, true);

    EXPECT_NE(shown.find("\r\033[Kbroadcast export: 1/1 service, 256 rows"), std::string::npos);
    const std::string screen = shown.substr(shown.rfind("\033[K") + 3);
    EXPECT_EQ(screen, "broadcast export: 1/1 service, 300 rows\nresult posted: ChannelMap Dump Success\n");
}

}  // namespace
