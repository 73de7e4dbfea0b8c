#include "apps/commandline/Reporter.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <string>

#include "base/FileDescriptor.h"
#include "base/testing/UnnamedFile.h"
#include "platform/Sockets.h"

namespace apps {
namespace {

// Standard error that can be read back.
class Page {
 public:
  Page() : file_(base::test::UnnamedFile()) {}
  int Fd() const { return file_.Get(); }
  std::string Text() const {
    std::array<char, 4096> buffer{};
    const ssize_t size = ::pread(file_.Get(), buffer.data(), buffer.size(), 0);
    return std::string(buffer.data(), static_cast<std::size_t>(size));
  }

 private:
  base::FileDescriptor file_;
};

TEST(ReporterTest, MessagesCarryTheToolsName) {
  const Page page;
  Reporter reporter("kelva", page.Fd(), {});
  reporter.Note("Two files.");
  reporter.Error("It is gone.", ExitCode::kGone);
  EXPECT_EQ(page.Text(), "kelva: Two files.\nkelva: It is gone.\n");
}

TEST(ReporterTest, QuietKeepsErrorsOnly) {
  const Page page;
  Reporter reporter("kelva", page.Fd(), {.quiet = true, .terminal = true});
  reporter.Note("Two files.");
  reporter.Overwrite("50 %");
  reporter.Error("It is gone.", ExitCode::kGone);
  EXPECT_EQ(page.Text(), "kelva: It is gone.\n");
}

TEST(ReporterTest, AQuestionIsAskedEvenWhenQuiet) {
  const Page page;
  Reporter reporter("kelva", page.Fd(), {.quiet = true, .terminal = true});
  reporter.Ask("Send it?");
  EXPECT_EQ(page.Text(), "kelva: Send it?\n");
}

TEST(ReporterTest, JsonStyleGivesOneObjectALine) {
  const Page page;
  Reporter reporter("kelva", page.Fd(), {.json = true});
  reporter.Note("Two files.");
  reporter.Event(Json::Object().Set("done", 5));
  reporter.Error("It is gone.", ExitCode::kGone);
  EXPECT_EQ(page.Text(),
            "{\"schema\":1,\"event\":\"note\",\"message\":\"Two files.\"}\n"
            "{\"schema\":1,\"event\":\"progress\",\"done\":5}\n"
            "{\"schema\":1,\"event\":\"error\",\"exit\":5,\"reason\":\"gone\",\"message\":\"It is gone.\"}\n");
}

TEST(ReporterTest, ALineOfAnotherProcessIsPassedOn) {
  const Page page;
  Reporter reporter("kelva", page.Fd(), {.json = true, .quiet = true});
  reporter.Forward(R"({"event":"error"})");
  EXPECT_EQ(page.Text(), "{\"event\":\"error\"}\n");
}

TEST(ReporterTest, NothingIsOverwrittenWhereNobodyWatches) {
  const Page page;
  Reporter reporter("kelva", page.Fd(), {});
  reporter.Overwrite("50 %");
  reporter.Event(Json::Object().Set("done", 5));
  reporter.Clear();
  EXPECT_EQ(page.Text(), "");
}

TEST(ReporterTest, AMessageTakesThePlaceOfTheBar) {
  const Page page;
  Reporter reporter("kelva", page.Fd(), {.terminal = true});
  reporter.Overwrite("50 %");
  reporter.Note("Half.");
  reporter.Note("Done.");
  EXPECT_EQ(page.Text(), "\r\x1b[K50 %\r\x1b[Kkelva: Half.\nkelva: Done.\n");
}

TEST(ReporterTest, ErrorsAreRedWhereColoursAreWanted) {
  const Page page;
  Reporter reporter("kelva", page.Fd(), {.terminal = true, .colour = true});
  reporter.Error("No.", ExitCode::kFailed);
  EXPECT_EQ(page.Text(), "\x1b[1;31mkelva:\x1b[0m No.\n");
}

TEST(ReporterTest, TheLastWordDoesNotWaitForABlockedReader) {
  std::array<int, 2> ends{};
  ASSERT_EQ(platform::Pipe(ends), 0);
  for (const int end : ends) platform::SetNonBlocking(end);
  const base::FileDescriptor reader(ends[0]);
  const base::FileDescriptor writer(ends[1]);
  const std::string block(4096, 'x');
  while (::write(writer.Get(), block.data(), block.size()) > 0) {
  }
  Reporter reporter("kelva", writer.Get(), {});
  reporter.LastWord("Interrupted.", ExitCode::kInterrupted);
}

TEST(ReporterTest, AFileIsNoTerminal) {
  const Page page;
  ::setenv("TERM", "xterm", 1);
  const ReportStyle style = StyleFor(page.Fd(), false, true);
  EXPECT_FALSE(style.terminal);
  EXPECT_FALSE(style.colour);
  EXPECT_TRUE(style.quiet);
}

}  // namespace
}  // namespace apps
