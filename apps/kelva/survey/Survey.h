#ifndef KELVA_APPS_KELVA_SURVEY_SURVEY_H_
#define KELVA_APPS_KELVA_SURVEY_SURVEY_H_

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "apps/camera/Attached.h"
#include "apps/commandline/Context.h"
#include "apps/commandline/Failure.h"
#include "apps/commandline/Json.h"
#include "apps/files/TargetFolder.h"
#include "apps/kelva/survey/Assumptions.h"
#include "apps/kelva/survey/Questions.h"
#include "apps/trace/Discretion.h"

namespace apps::survey {

/// One survey of an open camera: asks, keeps the bytes in a folder, and collects what they say of the assumptions. What
/// fails is noted, and the rest goes on. What is given to it outlives it.
class Survey {
 public:
  /// With `standIns` no file names the camera.
  Survey(Context& context, const TargetFolder& folder, const AttachedCamera& attached, bool standIns);

  /// Asks everything. Returns how the camera or the disk ended it, if they did. Throws Stopped.
  std::optional<Outcome> Run();

  bool IsWhole() const { return failed_.empty(); }
  Json Members() const;
  std::string Summary() const;

 private:
  void Part(const std::string& doing, const std::function<void()>& work);
  void Keep(const std::string& name, std::string bytes, Personal personal = Personal::kNothing);
  void Judge(Assumption assumption) { assumptions_.push_back(std::move(assumption)); }
  void Information();
  void ReadClock();
  void Battery();
  void Catalogue();
  void ReadOnePicture();
  kelva::OffsetOrder OrderOf(const std::string& path);
  std::optional<unsigned long long> ListedSize(int type);
  void Compare(const std::string& path, int type, std::optional<unsigned long long> listed);

  Context& context_;
  const TargetFolder& folder_;
  const AttachedCamera& attached_;
  const bool standIns_;
  Questions questions_;
  std::vector<Assumption> assumptions_;
  std::vector<std::string> failed_;
  std::vector<Timing> timings_;
  std::optional<DcfObj> picture_;
  std::uint32_t size_ = 0;  ///< of the picture's first file
};

}  // namespace apps::survey

#endif  // KELVA_APPS_KELVA_SURVEY_SURVEY_H_
