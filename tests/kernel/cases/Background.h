#ifndef KELVA_TESTS_KERNEL_CASES_BACKGROUND_H_
#define KELVA_TESTS_KERNEL_CASES_BACKGROUND_H_

#include <sys/types.h>

#include <string>
#include <vector>

/// A program that runs while the object lives; what it prints goes into a file.
class Background {
 public:
  Background(const std::vector<std::string>& arguments, std::string output);
  ~Background();
  Background(const Background&) = delete;
  Background& operator=(const Background&) = delete;

  pid_t process() const { return process_; }
  void Signal(int number) const;
  /// What it has printed so far.
  std::string Printed() const;

 private:
  std::string output_;
  pid_t process_ = -1;
};

#endif  // KELVA_TESTS_KERNEL_CASES_BACKGROUND_H_
