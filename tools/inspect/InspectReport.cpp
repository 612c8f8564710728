#include "InspectReport.h"

#include <functional>
#include <vector>

namespace {

const char kAllOnes[] = "18446744073709551615";

std::string Count(size_t n, const char *one, const char *many)
{
    return std::to_string(n) + " " + (n == 1 ? one : many);
}

// Up to kListed lines of ITEMS, then how many more there are.
template <typename T>
void List(std::string &out, const std::vector<T> &items, const std::function<std::string(const T &)> &line)
{
    for (size_t i = 0; i < items.size() && i < KelvoInspectReport::kListed; ++i)
        out += "  " + line(items[i]) + "\n";
    if (items.size() > KelvoInspectReport::kListed)
        out += "  ... and " + std::to_string(items.size() - KelvoInspectReport::kListed) + " more (--json lists all)\n";
}

std::string ScheduleName(const KelvoInspectSchedule &schedule)
{
    std::string name = schedule.service.allOnes && !schedule.source.empty() ? "source " : "service ";
    if (schedule.service.allOnes && !schedule.source.empty())
        return name + KelvoInspectText::Clean(schedule.source, false);
    name += schedule.service.Shown();
    if (!schedule.source.empty())
        name += " (source " + KelvoInspectText::Clean(schedule.source, false) + ")";
    return name;
}

std::string Stretch(const KelvoInspectStretch &stretch)
{
    return KelvoInspectText::Time(stretch.from) + " to " + KelvoInspectText::Time(stretch.to) + " (" +
           std::to_string(stretch.to - stretch.from) + " s)";
}

// The schedules with gaps or with overlaps: how many, then the first stretch of each.
void Anomalies(std::string &out, const KelvoInspectTable &table, const char *what,
               std::vector<KelvoInspectStretch> KelvoInspectSchedule::*stretches)
{
    std::vector<const KelvoInspectSchedule *> with;
    for (const KelvoInspectSchedule &schedule : table.schedules)
        if (!(schedule.*stretches).empty())
            with.push_back(&schedule);
    out += std::string("  ") + what + ": ";
    if (with.empty()) {
        out += "none\n";
        return;
    }
    out += "in " + Count(with.size(), "schedule", "schedules") + "\n";
    List<const KelvoInspectSchedule *>(out, with, [&](const KelvoInspectSchedule *const &schedule) {
        const auto &all = schedule->*stretches;
        std::string line = "  " + ScheduleName(*schedule) + ": " + Stretch(all.front());
        if (all.size() > 1)
            line += " and " + std::to_string(all.size() - 1) + " more";
        return line;
    });
}

void TableText(std::string &out, const KelvoInspectTable &table, size_t unmatchedSources)
{
    out += table.name + ": " + Count(table.rows, "row", "rows") + ", " + Count(table.services, "service", "services");
    if (unmatchedSources > 0)
        out += " and " + Count(unmatchedSources, "source", "sources") + " without one";
    if (table.timed)
        out += ", " + KelvoInspectText::Time(table.first) + " to " + KelvoInspectText::Time(table.end);
    out += "\n";
    if (table.untimed > 0)
        out += "  rows without a usable start or duration: " + std::to_string(table.untimed) + "\n";
    if (!table.languages.empty()) {
        out += "  languages:";
        const char *separator = " ";
        for (const auto &language : table.languages) {
            out += separator +
                   (language.first.empty() ? std::string("(none)") : KelvoInspectText::Clean(language.first, false)) +
                   " " + std::to_string(language.second);
            separator = ", ";
        }
        out += "\n";
    }
    Anomalies(out, table, "gaps", &KelvoInspectSchedule::gaps);
    Anomalies(out, table, "overlaps", &KelvoInspectSchedule::overlaps);
}

std::string Within(const KelvoInspectServiceId &id)
{
    return "stored as " + id.stored + ": the id lay within " + std::to_string(id.spread) + " of it";
}

Json::Value Id(const KelvoInspectServiceId &id)
{
    return id.kind == KelvoInspectServiceId::EKind::kNotAnId ? Json::Value(KelvoInspectText::Clean(id.stored, true))
                                                             : Json::Value(std::to_string(id.value));
}

Json::Value Stretches(const std::vector<KelvoInspectStretch> &stretches)
{
    Json::Value list(Json::arrayValue);
    for (const KelvoInspectStretch &stretch : stretches) {
        Json::Value one(Json::objectValue);
        one["from"] = static_cast<Json::Int64>(stretch.from);
        one["to"] = static_cast<Json::Int64>(stretch.to);
        list.append(one);
    }
    return list;
}

Json::Value TableJson(const KelvoInspectTable &table)
{
    Json::Value t(Json::objectValue);
    t["rows"] = static_cast<Json::UInt64>(table.rows);
    t["services"] = static_cast<Json::UInt64>(table.services);
    t["untimedRows"] = static_cast<Json::UInt64>(table.untimed);
    t["from"] = table.timed ? Json::Value(static_cast<Json::Int64>(table.first)) : Json::Value();
    t["to"] = table.timed ? Json::Value(static_cast<Json::Int64>(table.end)) : Json::Value();
    Json::Value &languages = t["languages"] = Json::Value(Json::objectValue);
    for (const auto &language : table.languages)
        languages[KelvoInspectText::Clean(language.first, true)] = static_cast<Json::UInt64>(language.second);
    size_t withGaps = 0;
    size_t withOverlaps = 0;
    Json::Value &schedules = t["schedules"] = Json::Value(Json::arrayValue);
    for (const KelvoInspectSchedule &schedule : table.schedules) {
        Json::Value s(Json::objectValue);
        s["serviceId"] = Id(schedule.service);
        s["exact"] = schedule.service.kind == KelvoInspectServiceId::EKind::kExact;
        if (!schedule.source.empty())
            s["source"] = KelvoInspectText::Clean(schedule.source, true);
        s["rows"] = static_cast<Json::UInt64>(schedule.rows);
        s["from"] = static_cast<Json::Int64>(schedule.first);
        s["to"] = static_cast<Json::Int64>(schedule.end);
        s["gaps"] = Stretches(schedule.gaps);
        s["overlaps"] = Stretches(schedule.overlaps);
        withGaps += schedule.gaps.empty() ? 0 : 1;
        withOverlaps += schedule.overlaps.empty() ? 0 : 1;
        schedules.append(s);
    }
    t["schedulesWithGaps"] = static_cast<Json::UInt64>(withGaps);
    t["schedulesWithOverlaps"] = static_cast<Json::UInt64>(withOverlaps);
    return t;
}

Json::Value IdRows(const std::vector<KelvoInspectInexactId> &ids)
{
    Json::Value list(Json::arrayValue);
    for (const KelvoInspectInexactId &entry : ids) {
        Json::Value one(Json::objectValue);
        one["table"] = entry.table;
        one["serviceId"] = Id(entry.service);
        one["stored"] = KelvoInspectText::Clean(entry.service.stored, true);
        if (entry.service.kind == KelvoInspectServiceId::EKind::kInexact)
            one["within"] = static_cast<Json::UInt64>(entry.service.spread);
        one["rows"] = static_cast<Json::UInt64>(entry.rows);
        list.append(one);
    }
    return list;
}

}  // namespace

std::string KelvoInspectReport::Text(const KelvoInspectDump &dump, const KelvoInspectSummary &summary)
{
    std::string out = "database: " + KelvoInspectText::Clean(dump.databasePath, false) + " (" +
                      std::to_string(dump.databaseBytes) + " bytes)\n";
    if (dump.timeKnown)
        out += "dump time: " + KelvoInspectText::Time(dump.time) + " (time.txt)\n";
    else if (!dump.timeProblem.empty())
        out += "dump time: unknown, " + dump.timeProblem + "\n";
    TableText(out, summary.rf, 0);
    TableText(out, summary.meta, summary.unmatched.size());

    out += std::string("metadata without a TV service (service id ") + kAllOnes + "): ";
    if (summary.unmatched.empty()) {
        out += "none\n";
    } else {
        out += Count(summary.unmatched.size(), "source", "sources") + ", " +
               Count(summary.unmatchedProgrammes, "programme", "programmes") + "\n";
        List<KelvoInspectSourceCount>(out, summary.unmatched, [](const KelvoInspectSourceCount &source) {
            return "source " + KelvoInspectText::Clean(source.source, false) + ": " +
                   Count(source.programmes, "programme", "programmes");
        });
    }

    out += "service ids the database could not hold exactly: ";
    if (summary.inexact.empty()) {
        out += "none\n";
    } else {
        out += Count(summary.inexact.size(), "id", "ids") + " in " + Count(summary.inexactRows, "row", "rows") + "\n";
        out += "  (ids at or above 2^63 are stored as REAL, which loses their low digits: these rows name a number\n"
               "  near the service's id, not the id)\n";
        List<KelvoInspectInexactId>(out, summary.inexact, [](const KelvoInspectInexactId &entry) {
            return entry.table + ": service " + entry.service.Shown() + ", " + Within(entry.service) + ": " +
                   Count(entry.rows, "row", "rows");
        });
    }
    if (!summary.notAnId.empty()) {
        out += "service ids that are not numbers:\n";
        List<KelvoInspectInexactId>(out, summary.notAnId, [](const KelvoInspectInexactId &entry) {
            return entry.table + ": service " + entry.service.Shown() + ": " + Count(entry.rows, "row", "rows");
        });
    }

    out += "programRF titles cut at " + std::to_string(KelvoInspectAnalysis::kTitleUnits) +
           " UTF-16 units (the export's limit): ";
    if (summary.cutTitles.empty()) {
        out += "none\n";
    } else {
        out += std::to_string(summary.cutTitles.size()) + "\n";
        List<KelvoInspectCutTitle>(out, summary.cutTitles, [](const KelvoInspectCutTitle &cut) {
            std::string title = KelvoInspectText::Clean(cut.title, false);
            size_t shown = 0;
            size_t at = 0;
            while (at < title.size() && shown < 40) {
                at += 1;
                while (at < title.size() && (static_cast<unsigned char>(title[at]) & 0xC0) == 0x80)
                    ++at;
                ++shown;
            }
            return "service " + cut.service.Shown() + ", " + KelvoInspectText::Time(cut.start) + ": \"" +
                   title.substr(0, at) + (at < title.size() ? "...\"" : "\"");
        });
    }
    return out;
}

Json::Value KelvoInspectReport::ToJson(const KelvoInspectDump &dump, const KelvoInspectSummary &summary)
{
    Json::Value root(Json::objectValue);
    root["database"] = KelvoInspectText::Clean(dump.databasePath, true);
    root["bytes"] = static_cast<Json::Int64>(dump.databaseBytes);
    root["dumpTime"] = dump.timeKnown ? Json::Value(static_cast<Json::Int64>(dump.time)) : Json::Value();
    if (!dump.timeProblem.empty())
        root["dumpTimeProblem"] = dump.timeProblem;
    root["tables"]["programRF"] = TableJson(summary.rf);
    root["tables"]["programMETA"] = TableJson(summary.meta);

    Json::Value &unmatched = root["unmatched"] = Json::Value(Json::objectValue);
    unmatched["serviceId"] = kAllOnes;
    unmatched["programmes"] = static_cast<Json::UInt64>(summary.unmatchedProgrammes);
    Json::Value &sources = unmatched["sources"] = Json::Value(Json::arrayValue);
    for (const KelvoInspectSourceCount &source : summary.unmatched) {
        Json::Value one(Json::objectValue);
        one["source"] = KelvoInspectText::Clean(source.source, true);
        one["programmes"] = static_cast<Json::UInt64>(source.programmes);
        sources.append(one);
    }

    root["inexactServiceIds"] = IdRows(summary.inexact);
    root["inexactRows"] = static_cast<Json::UInt64>(summary.inexactRows);
    root["notAnIdServiceIds"] = IdRows(summary.notAnId);

    Json::Value &cut = root["cutTitles"] = Json::Value(Json::objectValue);
    cut["limitUnits"] = static_cast<Json::UInt64>(KelvoInspectAnalysis::kTitleUnits);
    Json::Value &titles = cut["titles"] = Json::Value(Json::arrayValue);
    for (const KelvoInspectCutTitle &entry : summary.cutTitles) {
        Json::Value one(Json::objectValue);
        one["serviceId"] = Id(entry.service);
        one["start"] = static_cast<Json::Int64>(entry.start);
        one["title"] = KelvoInspectText::Clean(entry.title, true);
        titles.append(one);
    }
    return root;
}
