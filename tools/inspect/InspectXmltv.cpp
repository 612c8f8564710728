#include <algorithm>
#include <ctime>
#include <map>
#include <ostream>
#include <tuple>
#include <vector>

#include "InspectReport.h"

namespace {

struct Channel {
    std::string id;
    std::string name;
    std::vector<const KelvoInspectProgramme *> programmes;
};

// Channels in the order: services by id, inexact ids, sources without a service, the rest.
using ChannelKey = std::tuple<int, KelvoInspectServiceId, std::string>;

ChannelKey KeyOf(const KelvoInspectProgramme &row, bool isMeta)
{
    using EKind = KelvoInspectServiceId::EKind;
    if (isMeta && row.service.allOnes)
        return {2, KelvoInspectServiceId(), row.source};
    return {row.service.kind == EKind::kExact ? 0 : row.service.kind == EKind::kInexact ? 1 : 3, row.service, ""};
}

Channel NewChannel(const ChannelKey &key)
{
    const KelvoInspectServiceId &service = std::get<1>(key);
    const std::string value = std::to_string(service.value);
    switch (std::get<0>(key)) {
    case 0:
        return {value + ".kelvo", "Service " + value, {}};
    case 1:
        return {value + ".inexact.kelvo", "Service ~" + value + " (its id was not kept exactly)", {}};
    case 2:
        return {KelvoInspectXmltv::Label(std::get<2>(key)) + ".source.kelvo",
                "Source " + std::get<2>(key) + " (no TV service)",
                {}};
    default:
        return {KelvoInspectXmltv::Label(service.stored) + ".unknown.kelvo",
                "Service " + service.Shown() + " (not an id)",
                {}};
    }
}

bool Blank(const std::string &text)
{
    return text.find_first_not_of(" \t\r\n") == std::string::npos;
}

void Element(std::string &out, const char *name, const std::string &text, const std::string &language)
{
    out += "    <";
    out += name;
    if (!language.empty())
        out += " lang=\"" + KelvoInspectXmltv::Escape(language) + "\"";
    out += ">" + KelvoInspectXmltv::Escape(text) + "</" + name + ">\n";
}

}  // namespace

void KelvoInspectXmltv::Write(const KelvoInspectDump &dump, std::ostream &to, Counts &counts)
{
    counts = Counts();
    std::map<ChannelKey, Channel> channels;
    for (bool isMeta : {false, true})
        for (const KelvoInspectProgramme &row : isMeta ? dump.meta : dump.rf) {
            if (!row.timed) {
                ++counts.untimed;
                continue;
            }
            ChannelKey key = KeyOf(row, isMeta);
            auto found = channels.find(key);
            if (found == channels.end())
                found = channels.emplace(key, NewChannel(key)).first;
            found->second.programmes.push_back(&row);
        }

    to << "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
          "<!DOCTYPE tv SYSTEM \"xmltv.dtd\">\n"
          "<tv source-info-name=\"kelvoutilInfo.db\" generator-info-name=\"kelvo-inspect\">\n";
    for (const auto &entry : channels)
        to << "  <channel id=\"" << Escape(entry.second.id) << "\">\n    <display-name>" << Escape(entry.second.name)
           << "</display-name>\n  </channel>\n";
    for (auto &entry : channels) {
        std::vector<const KelvoInspectProgramme *> &programmes = entry.second.programmes;
        std::stable_sort(
            programmes.begin(), programmes.end(),
            [](const KelvoInspectProgramme *a, const KelvoInspectProgramme *b) { return a->start < b->start; });
        for (const KelvoInspectProgramme *row : programmes) {
            std::string out = "  <programme start=\"" + Time(row->start) + "\" stop=\"" + Time(row->End()) +
                              "\" channel=\"" + Escape(entry.second.id) + "\">\n";
            // XMLTV wants a title in every programme and no empty description.
            if (Blank(KelvoInspectText::Clean(row->title, true)))
                Element(out, "title", "(no title)", "");
            else
                Element(out, "title", row->title, row->language);
            if (!Blank(KelvoInspectText::Clean(row->description, true)))
                Element(out, "desc", row->description, row->language);
            out += "  </programme>\n";
            to << out;
            ++counts.programmes;
        }
    }
    to << "</tv>\n";
    counts.channels = channels.size();
}

std::string KelvoInspectXmltv::Escape(const std::string &text)
{
    std::string out;
    for (char c : KelvoInspectText::Clean(text, true)) {
        switch (c) {
        case '&':
            out += "&amp;";
            break;
        case '<':
            out += "&lt;";
            break;
        case '>':
            out += "&gt;";
            break;
        case '"':
            out += "&quot;";
            break;
        case '\r':
            out += "&#13;";  // a parser would read a bare one as a line break
            break;
        default:
            out += c;
        }
    }
    return out;
}

std::string KelvoInspectXmltv::Time(long long seconds)
{
    time_t t = static_cast<time_t>(seconds);
    struct tm tm {};
    char text[32] = {};
    if (gmtime_r(&t, &tm) != nullptr)
        std::strftime(text, sizeof text, "%Y%m%d%H%M%S +0000", &tm);
    return text;
}

std::string KelvoInspectXmltv::Label(const std::string &text)
{
    const bool plain = !text.empty() && std::all_of(text.begin(), text.end(), [](char c) {
        return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '-';
    });
    if (plain)
        return text;
    static const char kHex[] = "0123456789abcdef";
    std::string out = "h";
    for (unsigned char c : text) {
        out += kHex[c >> 4];
        out += kHex[c & 0xF];
    }
    return out;
}
