#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "FakeDlog.h"
#include "FakeNotification.h"
#include "ResultNotification.h"
#include "UtilTestSupport.h"
#include "notification.h"

using ::testing::ElementsAre;
using ::testing::ElementsAreArray;

namespace {
class ResultNotificationTest : public UtilTest {};

struct ContentCase {
    int type;
    const char *content;
};

class ResultNotificationContent : public ResultNotificationTest, public ::testing::WithParamInterface<ContentCase> {};

TEST_P(ResultNotificationContent, PostsDumpTitleWithTheContentOfTheResult)
{
    const ContentCase &c = GetParam();
    ResultNotification::GetInstance()->Show(static_cast<ResultNotification::EResultType>(c.type));

    ASSERT_EQ(FakeNotification::Posted().size(), 1u);
    PostedNotification posted = FakeNotification::Posted()[0];
    EXPECT_EQ(posted.title, "ChannelMap Dump");
    EXPECT_EQ(posted.content, c.content);
    EXPECT_EQ(posted.applist, 0x11);
    EXPECT_EQ(posted.hideTimeout, 20);
    EXPECT_TRUE(posted.autoRemove);
    EXPECT_TRUE(FakeDlog::Contains("EResultType : [" + std::to_string(c.type) + "], [" + c.content + "]"));
}

INSTANTIATE_TEST_SUITE_P(EveryResultType, ResultNotificationContent,
                         ::testing::Values(ContentCase{0, "ChannelMap Dump Fail"},
                                           ContentCase{1, "ChannelMap Dump Success"},
                                           ContentCase{2, "Restore ChannelMap Fail"},
                                           ContentCase{3, "Restore ChannelMap Success"},
                                           ContentCase{7, ""}, ContentCase{-1, ""}));

TEST_F(ResultNotificationTest, CallsTheServiceInOrderWithItsTextKeysAndNeverFreesThePostedHandle)
{
    ResultNotification::GetInstance()->Show(ResultNotification::RESULT_RESTORE_SUCCESS);

    std::vector<FakeNotificationCall> calls = FakeNotification::Calls();
    ASSERT_THAT(FakeNotification::CallNames(),
                ElementsAre("notification_create", "notification_set_text", "notification_set_text",
                            "notification_set_display_applist", "notification_set_hide_timeout",
                            "notification_set_auto_remove", "notification_post"));
    EXPECT_THAT(calls[0].args, ElementsAre("0"));
    EXPECT_THAT(calls[1].args, ElementsAre("0", "ChannelMap Dump", "TITLE", "-1"));
    EXPECT_THAT(calls[2].args, ElementsAre("1", "Restore ChannelMap Success", "CONTENT", "-1"));
    EXPECT_THAT(calls[3].args, ElementsAre("17"));
    EXPECT_THAT(calls[4].args, ElementsAre("20"));
    EXPECT_THAT(calls[5].args, ElementsAre("1"));
}

// Each failure is logged under the name of the other call, and Show goes on.
TEST_F(ResultNotificationTest, FailureMessagesNameTheOtherCall)
{
    FakeNotification::SetDisplayApplistResult(-22);
    ResultNotification::GetInstance()->Show(ResultNotification::RESULT_DUMP_SUCCESS);
    EXPECT_TRUE(FakeDlog::Contains("> notification_post failed[-22]"));
    EXPECT_FALSE(FakeDlog::Contains("notification_set_display_applist failed"));
    EXPECT_EQ(FakeNotification::Posted().size(), 1u);

    FakeDlog::Clear();
    FakeNotification::Reset();
    FakeNotification::SetPostResult(NOTIFICATION_ERROR_IO_ERROR);
    ResultNotification::GetInstance()->Show(ResultNotification::RESULT_DUMP_SUCCESS);
    EXPECT_TRUE(FakeDlog::Contains("> notification_set_display_applist failed[-5]"));
    EXPECT_FALSE(FakeDlog::Contains("notification_post failed"));
}

TEST_F(ResultNotificationTest, FailedCreateFreesTheNullHandleAndPostsNothing)
{
    FakeNotification::FailCreate();
    ResultNotification::GetInstance()->Show(ResultNotification::RESULT_DUMP_FAIL);
    EXPECT_THAT(FakeNotification::CallNames(), ElementsAre("notification_create", "notification_free"));
    EXPECT_EQ(FakeNotification::Calls()[1].handle, -1);
    EXPECT_EQ(LogIndex("notification_create failed"), LogIndex("m_notihandle:[(nil)]") + 1);
}

TEST_F(ResultNotificationTest, GetInstanceGivesOneObjectAndLogsEachRequest)
{
    ResultNotification *first = ResultNotification::GetInstance();
    FakeDlog::Clear();
    ResultNotification *second = ResultNotification::GetInstance();
    EXPECT_NE(first, nullptr);
    EXPECT_EQ(first, second);
    EXPECT_THAT(UtilLog(), ElementsAre("Get ResultNotification Instance."));
}
}  // namespace
