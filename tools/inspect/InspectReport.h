// kelvo-inspect's outputs: the summary as text or JSON, and the guide as an XMLTV document.
#ifndef KELVO_TOOLS_INSPECTREPORT_H
#define KELVO_TOOLS_INSPECTREPORT_H

#include <cstddef>
#include <ostream>
#include <string>

#include <json/json.h>

#include "InspectDump.h"

class KelvoInspectReport {
public:
    // Lists in the text name this many entries, then how many more the JSON holds.
    static constexpr size_t kListed = 10;

    static std::string Text(const KelvoInspectDump &dump, const KelvoInspectSummary &summary);
    static Json::Value ToJson(const KelvoInspectDump &dump, const KelvoInspectSummary &summary);
};

// The guide as XMLTV: one channel per service (and one per metadata source without a TV
// service, as those share the all-ones id), one programme per timed row of both tables, with
// start and stop, title and description in the row's language.
class KelvoInspectXmltv {
public:
    struct Counts {
        size_t channels = 0;
        size_t programmes = 0;
        size_t untimed = 0;  // rows left out: without a usable start or duration
    };

    static void Write(const KelvoInspectDump &dump, std::ostream &to, Counts &counts);
    // Text for an element or an attribute value: cleaned, then &, <, > and " escaped.
    static std::string Escape(const std::string &text);
    // XMLTV's time: "20261123203105 +0000".
    static std::string Time(long long seconds);
    // A channel id XMLTV takes (labels of letters, digits and '-'): TEXT itself when it is one
    // such label, else "h" and its bytes in hexadecimal.
    static std::string Label(const std::string &text);
};

#endif
