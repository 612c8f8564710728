// kelvo-inspect: what a dump holds, for the engineer who receives the stick. Reads the dump
// database read-only and never writes to the stick.
#include <cstdio>
#include <fstream>
#include <iostream>
#include <string>

#include <sys/stat.h>

#include "InspectReport.h"

namespace {
void Usage(FILE *to)
{
    std::fprintf(to, "usage: kelvo-inspect [--json] [--xmltv FILE] PATH\n"
                     "  PATH          a stick, its DumpMWDB folder, or a kelvoutilInfo.db\n"
                     "  --json        the summary as JSON\n"
                     "  --xmltv FILE  also write the guide of both tables to FILE as an XMLTV document\n"
                     "Exit status: 0, 1 when the database is missing, empty or damaged, 2 on a usage error.\n");
}

bool SameFile(const std::string &a, const std::string &b)
{
    struct stat first {};
    struct stat second {};
    return !b.empty() && stat(a.c_str(), &first) == 0 && stat(b.c_str(), &second) == 0 &&
           first.st_dev == second.st_dev && first.st_ino == second.st_ino;
}

int Fail(const std::string &why)
{
    std::fprintf(stderr, "kelvo-inspect: %s\n", KelvoInspectText::Clean(why, false).c_str());
    return 1;
}
}  // namespace

int main(int argc, char **argv)
{
    std::string path;
    std::string xmltv;
    bool json = false;
    for (int i = 1; i < argc; ++i) {
        const std::string arg = argv[i];
        if (arg == "-h" || arg == "--help") {
            Usage(stdout);
            return 0;
        }
        if (arg == "--json") {
            json = true;
        } else if (arg == "--xmltv" && i + 1 < argc) {
            xmltv = argv[++i];
        } else if (!arg.empty() && arg[0] != '-' && path.empty()) {
            path = arg;
        } else {
            Usage(stderr);
            return 2;
        }
    }
    if (path.empty()) {
        Usage(stderr);
        return 2;
    }

    KelvoInspectDump dump;
    std::string error;
    if (!KelvoInspectReader::Locate(path, dump, error) || !KelvoInspectReader::Read(dump, error))
        return Fail(error);
    KelvoInspectReader::ReadTimeFile(dump);
    const KelvoInspectSummary summary = KelvoInspectAnalysis::Summarize(dump);

    std::string xmltvLine;
    if (!xmltv.empty()) {
        if (SameFile(xmltv, dump.databasePath) || SameFile(xmltv, dump.timeFile))
            return Fail(xmltv + ": that is the dump's own file; name another for the XMLTV document");
        KelvoInspectXmltv::Counts counts;
        std::ofstream out(xmltv, std::ios::binary | std::ios::trunc);
        KelvoInspectXmltv::Write(dump, out, counts);
        out.close();
        if (!out)
            return Fail(xmltv + ": cannot write the XMLTV document");
        xmltvLine = "XMLTV: " + std::to_string(counts.channels) + " channels, " + std::to_string(counts.programmes) +
                    " programmes in " + xmltv;
        if (counts.untimed > 0)
            xmltvLine += " (left out: " + std::to_string(counts.untimed) + " without a usable time)";
    }

    if (json) {
        Json::Value root = KelvoInspectReport::ToJson(dump, summary);
        if (!xmltv.empty())
            root["xmltv"] = xmltv;
        Json::StreamWriterBuilder builder;
        builder["indentation"] = "  ";
        builder["emitUTF8"] = true;
        std::cout << Json::writeString(builder, root) << "\n";
    } else {
        std::cout << KelvoInspectReport::Text(dump, summary);
        if (!xmltvLine.empty())
            std::cout << xmltvLine << "\n";
    }
    return std::cout.good() ? 0 : 1;
}
