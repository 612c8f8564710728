#include "ResultNotification.h"
#include "UtilTestSupport.h"

using ::testing::_;
using ::testing::Contains;
using ::testing::ElementsAre;

namespace {
class ResultNotificationTest : public UtilTest {
protected:
    // Show on the one instance, with the log of GetInstance left out.
    static void Show(int type)
    {
        ResultNotification *notifier = ResultNotification::GetInstance();
        FakeDlog::Clear();
        notifier->Show(static_cast<ResultNotification::EResultType>(type));
    }
};

struct ContentCase {
    int type;
    const char *content;
};

class ResultNotificationContent : public ResultNotificationTest, public ::testing::WithParamInterface<ContentCase> {};

TEST_P(ResultNotificationContent, PostsTheContentOfTheResultUnderTheDumpTitle)
{
    const ContentCase &c = GetParam();
    Show(c.type);
    EXPECT_THAT(FakeNotification::Calls(),
                ElementsAre("notification_create(0)", "notification_set_text(handle, 0, ChannelMap Dump, TITLE, -1)",
                            "notification_set_text(handle, 1, " + std::string(c.content) + ", CONTENT, -1)",
                            "notification_set_display_applist(handle, 17)", "notification_set_hide_timeout(handle, 20)",
                            "notification_set_auto_remove(handle, 1)", "notification_post(handle)"));
    EXPECT_THAT(UtilLog(), Contains("EResultType : [" + std::to_string(c.type) + "], [" + c.content + "]"));
}

INSTANTIATE_TEST_SUITE_P(EveryResultType, ResultNotificationContent,
                         ::testing::Values(ContentCase{0, "ChannelMap Dump Fail"},
                                           ContentCase{1, "ChannelMap Dump Success"},
                                           ContentCase{2, "Restore ChannelMap Fail"},
                                           ContentCase{3, "Restore ChannelMap Success"}, ContentCase{7, ""},
                                           ContentCase{-1, ""}));

// Each failure is logged under the name of the other call, and Show goes on.
TEST_F(ResultNotificationTest, FailureMessagesNameTheOtherCall)
{
    FakeNotification::SetDisplayApplistResult(-22);
    Show(ResultNotification::RESULT_DUMP_SUCCESS);
    EXPECT_THAT(UtilLog(), ElementsAre(_, _, "notification_post failed[-22]"));
    EXPECT_EQ(FakeNotification::Calls().back(), "notification_post(handle)");

    FakeNotification::Reset();
    FakeNotification::SetPostResult(-5);
    Show(ResultNotification::RESULT_DUMP_SUCCESS);
    EXPECT_THAT(UtilLog(), ElementsAre(_, _, "notification_set_display_applist failed[-5]"));
}

TEST_F(ResultNotificationTest, FailedCreateFreesTheNullHandleAndPostsNothing)
{
    FakeNotification::FailCreate();
    Show(ResultNotification::RESULT_DUMP_FAIL);
    EXPECT_THAT(FakeNotification::Calls(), ElementsAre("notification_create(0)", "notification_free(null)"));
    EXPECT_THAT(UtilLog(), ElementsAre("m_notihandle:[(nil)]", "notification_create failed"));
}

TEST_F(ResultNotificationTest, GetInstanceGivesOneObjectAndLogsEachRequest)
{
    ResultNotification *first = ResultNotification::GetInstance();
    // Under ctest each test has a process of its own, so the instance was made just now.
    std::vector<std::string> created;
    for (const std::string &text : FakeDlog::Texts("kelvo-util"))
        if (text.find("Create ResultNotification Instance.") != text.npos)
            created.push_back(text);
    EXPECT_LE(created.size(), 1u);
    for (const std::string &text : created)
        EXPECT_NE(text.find(": m_CreateInstance("), text.npos) << text;
    FakeDlog::Clear();
    EXPECT_EQ(ResultNotification::GetInstance(), first);
    EXPECT_THAT(UtilLog(), ElementsAre("Get ResultNotification Instance."));
}
}  // namespace
