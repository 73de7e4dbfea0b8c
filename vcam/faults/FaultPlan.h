#ifndef KELVA_VCAM_FAULTS_FAULT_PLAN_H_
#define KELVA_VCAM_FAULTS_FAULT_PLAN_H_

#include <optional>
#include <vector>

#include "vcam/device/DataSet.h"
#include "vcam/faults/Fault.h"
#include "wire/Command.h"

namespace vcam {

/// The faults that are armed on one camera, and what they do around each command. For each command call Next; if it
/// gives no reply, call Limit, run the command and call Apply.
class FaultPlan {
 public:
  void Arm(const Fault& fault);

  /// Counts one command. Gives the reply of a fault that prevents it from running, if there is one.
  std::optional<wire::Reply> Next();
  /// The command as the camera sees it: data to the camera ends where the unplug comes.
  wire::Command Limit(const wire::Command& command) const;
  /// Changes the reply. `marks` are those of the selected data set, null when there is none.
  void Apply(const wire::Command& command, const Marks* marks, wire::Reply& reply);

 private:
  struct Armed {
    Fault fault;
    std::uint64_t seen = 0;  // commands since it was armed, this one included
    bool Due() const { return seen == fault.at; }
    bool Running() const { return seen >= fault.at; }
  };

  void ApplyOne(Armed& armed, const wire::Command& command, const Marks* marks, wire::Reply& reply);
  void ApplyUnplug(Armed& armed, const wire::Command& command, wire::Reply& reply);

  std::vector<Armed> armed_;
};

}  // namespace vcam

#endif  // KELVA_VCAM_FAULTS_FAULT_PLAN_H_
