// A content's rating on the simulated TV: the country code comes from the TV's control folder
// through the host's product information, as on a set made with kelvo-tv-gen --country.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <optional>
#include <string>
#include <vector>

#include "FCTvlumeContent.h"
#include "SimFolderTest.h"

namespace {

using RatingCountry = KelvoSimFolderTest;

TEST_F(RatingCountry, TheTvsCountryPicksTheTable)
{
    struct Row {
        const char *country;  // null: the TV holds no country file
        const char *ratings;
        bool result;
        int rating;
    };
    const std::vector<Row> rows = {
        {nullptr, "12", true, 9}, {"34", "L", true, 1},   {"37", "PGR", true, 8},
        {"39", "PG", true, 4},    {"0", "12", false, 77}, {"5", "14", true, 11},
    };
    for (const Row &row : rows) {
        SCOPED_TRACE(row.country != nullptr ? row.country : "(none)");
        std::filesystem::remove(m_folder + "/country");
        if (row.country != nullptr)
            Write("country", std::string(row.country) + "\n");
        Json::Value json;
        json["ratings"] = row.ratings;
        RatingInfo out;
        out.rating = 77;
        EXPECT_EQ(FCTvlumeContent(json).GetRatingInfo(out), row.result);
        EXPECT_EQ(out.rating, row.rating);
    }
}

}  // namespace
