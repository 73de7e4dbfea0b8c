#include "apps/kelva/verbs/testing/VerbTest.h"

#include <unistd.h>

#include <fstream>
#include <iterator>
#include <utility>

#include "apps/camera/Explain.h"
#include "apps/commandline/Context.h"
#include "apps/commandline/Run.h"
#include "apps/kelva/verbs/Verbs.h"
#include "base/testing/UnnamedFile.h"
#include "darwin/virtual/VirtualRegistry.h"
#include "vcam/camera/InProcess.h"

namespace apps {
namespace {

std::string Read(int fd) {
  std::string text(static_cast<std::size_t>(::lseek(fd, 0, SEEK_END)), '\0');
  const ssize_t size = ::pread(fd, text.data(), text.size(), 0);
  return text.substr(0, static_cast<std::size_t>(size));
}

vcam::Options OptionsFor(const std::filesystem::path& storage) {
  vcam::Options options;
  options.serial = "K1";
  options.storage = storage;
  return options;
}

}  // namespace

class VerbTest::Machine {
 public:
  explicit Machine(const std::filesystem::path& storage) {
    const vcam::Options options = OptionsFor(storage);
    darwin::CameraDescription description;
    description.serial = options.serial;
    description.vendor = options.vendor;
    description.product = options.product;
    description.revision = options.revision;
    description.peripheralType = options.peripheralType;
    description.openUserClient = vcam::OpenInProcess(std::make_shared<vcam::VirtualCamera>(options));
    registry_.AttachCamera(description);
  }

 private:
  darwin::VirtualRegistry registry_;
};

VerbTest::VerbTest() {
  std::filesystem::create_directory(storage);
  ::setenv("XDG_CACHE_HOME", std::string(cache_.Path()).c_str(), 1);
  machine_ = std::make_unique<Machine>(storage);
}

VerbTest::~VerbTest() {
  machine_.reset();
}

void VerbTest::Put(const std::string& name, const std::string& text) const {
  std::filesystem::create_directories((storage / name).parent_path());
  std::ofstream(storage / name) << text;
}

std::string VerbTest::Text(const std::filesystem::path& path) const {
  std::ifstream file(path);
  return {std::istreambuf_iterator<char>(file), {}};
}

Ran VerbTest::Run(const std::vector<const char*>& arguments) {
  const base::FileDescriptor out(base::test::UnnamedFile());
  const base::FileDescriptor err(base::test::UnnamedFile());
  Output output(out.Get());
  Reporter reporter("kelva", err.Get(), StyleFor(err.Get(), arguments));
  const Stop stop;
  StdoutDiversion diversion;
  ExitCode code = ExitCode::kUsage;
  std::string doing;
  try {
    const Invocation call = Parse(Kelva(), arguments);
    Context context(call, output, reporter, stop, diversion);
    try {
      code = call.verb->run(context);
    } catch (const std::exception&) {
      doing = context.WasDoing();
      throw;
    }
  } catch (const std::exception& error) {
    const Outcome outcome = Explain(error, doing);
    code = outcome.code;
    reporter.Error(outcome.sentence, outcome.code);
  }
  return {code, Read(out.Get()), Read(err.Get())};
}

namespace {

TEST_F(VerbTest, TheTestsOwnCameraIsThere) {
  EXPECT_EQ(Run({"ready"}).out, "ready\n");
}

}  // namespace
}  // namespace apps
