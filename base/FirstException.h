#ifndef KELVA_BASE_FIRST_EXCEPTION_H_
#define KELVA_BASE_FIRST_EXCEPTION_H_

#include <exception>

namespace base {

/// Runs actions that may throw: each one runs, whatever the others did, and the first exception goes on at the end.
class FirstException {
 public:
  template <class Action>
  void Try(Action&& action) {
    try {
      action();
    } catch (...) {
      if (first_ == nullptr) first_ = std::current_exception();
    }
  }

  /// Throws the first exception, if there was one. Call it once, after the last action.
  void Rethrow() const {
    if (first_ != nullptr) std::rethrow_exception(first_);
  }

 private:
  std::exception_ptr first_;
};

}  // namespace base

#endif  // KELVA_BASE_FIRST_EXCEPTION_H_
