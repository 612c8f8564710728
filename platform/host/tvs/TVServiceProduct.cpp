// The TV simulator's product information: the set's country code comes from the control
// folder's file "country" (decimal text), written by kelvo-tv-gen --country or by hand. Without
// the file the set answers kDefaultCountry, a code that no country claims for a table of its own.
#include "KelvoSimFolder.h"
#include "TVServiceAPI.h"

namespace {
const int kDefaultCountry = 1;

class TCProductSimulator : public ISOSpecApp {
public:
    bool GetIntValue(int item, int &value) override
    {
        if (item != SOSPEC_ITEM_COUNTRY)
            return false;
        std::string text;
        if (!KelvoSimReadFile(KelvoSimFolder() + "/country", text)) {
            value = kDefaultCountry;
            return true;
        }
        if (!KelvoSimParseInt(text, value)) {
            TCApiPrintMessage("[TVS] country file holds no number");
            return false;
        }
        return true;
    }
};
}  // namespace

int TVServiceAPI::CreateSOSpecApp(int /*profile*/, int /*flags*/, ISOSpecApp **app)
{
    if (app == nullptr)
        return -1;
    *app = new TCProductSimulator();
    return 0;
}
