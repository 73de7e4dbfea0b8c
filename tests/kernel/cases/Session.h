#ifndef KELVA_TESTS_KERNEL_CASES_SESSION_H_
#define KELVA_TESTS_KERNEL_CASES_SESSION_H_

#include <string>

#include "tests/kernel/cases/Background.h"

/// The login session of the person at the seat, with the desktop application installed and the agent that watches for
/// cameras. Needs a Seat.
class AgentSession {
 public:
  /// Returns when the agent watches.
  AgentSession();
  /// How often the application has been launched.
  int Launches() const;
  /// Whether the application is launched that often, and no more often after a while.
  bool Settles(int launches) const;
  const Background& agent() const { return agent_; }

 private:
  Background agent_;
};

#endif  // KELVA_TESTS_KERNEL_CASES_SESSION_H_
