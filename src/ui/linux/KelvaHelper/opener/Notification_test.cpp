#include "src/ui/linux/KelvaHelper/opener/Notification.h"

#include <gtest/gtest.h>

#include "src/ui/linux/KelvaHelper/opener/testing/ScratchNotifications.h"

namespace opener {
namespace {

TEST(Notification, GivesProgramIconHeadlineAndTextWithoutMarkup) {
  const ScratchNotifications desktop;
  EXPECT_EQ(Notify(desktop.Connection(), "A camera", "Folder <a> & b", kLongMs), "");
  EXPECT_EQ(desktop.Message(), "('Kelva', 0, 'kelva', 'A camera', 'Folder &lt;a&gt; &amp; b', [], {}, -1)");
}

TEST(Notification, DesktopThatRefusesIsTheReason) {
  const ScratchNotifications desktop(ScratchNotifications::Behaviour::kRefuse);
  EXPECT_NE(Notify(desktop.Connection(), "A", "b", kLongMs).find("not today"), std::string::npos);
}

TEST(Notification, DesktopThatNeverAnswersIsNotWaitedForLongerThanAllowed) {
  const ScratchNotifications desktop(ScratchNotifications::Behaviour::kSilent);
  constexpr int kAllowedMs = 50;
  EXPECT_NE(Notify(desktop.Connection(), "A", "b", kAllowedMs), "");
}

TEST(Notification, WithoutABusNobodySeesIt) {
  EXPECT_EQ(Notify(nullptr, "A", "b", kLongMs), "this session has no message bus");
}

TEST(Notification, ComplaintIsALineOfTheJournalAndAMessage) {
  const ScratchNotifications desktop;
  testing::internal::CaptureStderr();
  ComplainOnDesktop(desktop.Connection(), "A camera", "Nothing opens it.");
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "kelva-open: Nothing opens it.\n");
  EXPECT_NE(desktop.Message().find("'Nothing opens it.'"), std::string::npos);
}

}  // namespace
}  // namespace opener
