#include <fstream>
#include <regex>

#include "apps/commandline/Program.h"
#include "apps/trace/Trace.h"
#include "base/testing/ScratchFolder.h"
#include "tests/stack/StackTest.h"

// A trace is the same through every door: the example of docs/trace.md, but for times, processes and the machine.

namespace tests::stack {
namespace {

class TraceOfACamera : public StackTest {
 protected:
  boost::shared_ptr<Camera> Traced() {
    Opened();
    return trace_.Around(camera_, {kSerial, "Kelva", "Camera", "1.00", "com_kelva_Glimmer"});
  }

  /// The lines of a file, with what differs between two runs taken out.
  static std::vector<std::string> Lines(const std::filesystem::path& path) {
    apps::TraceFile::FlushAllAtAbort();
    static const std::regex differs(R"re("(version|system|time)":"[^"]*"|"(process|at_us|us)":\d+)re");
    std::vector<std::string> lines;
    std::ifstream file(path);
    for (std::string line; std::getline(file, line);) {
      if (line.starts_with("{\"event\":")) lines.push_back(std::regex_replace(line, differs, ""));
    }
    return lines;
  }

  const base::ScratchFolder folder_;
  const std::filesystem::path path_ = folder_.Path() / "trace";
  const apps::Program program_ = {
      .name = "kelva", .version = "1", .summary = "", .description = "", .verbs = {}, .options = {}};
  apps::Trace trace_{{path_.string(), false}, program_, "get", nullptr};
};

TEST_F(TraceOfACamera, IsTheExampleOfTheDocument) {
  storage_.Put("A.JPG", "123456789");
  const boost::shared_ptr<Camera> camera = Traced();
  EXPECT_EQ(camera->ReadFile(R"(I:\A.JPG)", nullptr, nullptr, true).size(), 9U);
  Arm(vcam::FaultKind::kFail);
  EXPECT_THROW(camera->BatteryLevel(), CameraTransferError);
  EXPECT_EQ(Lines(path_), Lines(KELVA_TRACE_DOCUMENT));
}

TEST_F(TraceOfACamera, HasTheReturnCodeOfACameraThatHasGone) {
  const boost::shared_ptr<Camera> camera = Traced();
  Unplug();
  EXPECT_THROW(camera->BatteryLevel(), CameraTransferError);
  camera_.reset();
  ASSERT_EQ(Lines(path_).size(), 3U);
  EXPECT_THAT(Lines(path_).back(), testing::HasSubstr(R"("result":"failed","return_code":")"));
}

}  // namespace
}  // namespace tests::stack
