#ifndef KELVA_TESTS_KERNEL_CASES_SEAT_H_
#define KELVA_TESTS_KERNEL_CASES_SEAT_H_

#include <string>
#include <vector>

/// While it lives, the package's udev rule is installed and the person of user id 1000 sits at the screen, as far as the
/// login manager tells udev.
class Seat {
 public:
  Seat();
  ~Seat();
  Seat(const Seat&) = delete;
  Seat& operator=(const Seat&) = delete;
};

/// The words that run a program as that person.
std::vector<std::string> AsPerson(const std::vector<std::string>& words);

inline constexpr unsigned kPerson = 1000;

#endif  // KELVA_TESTS_KERNEL_CASES_SEAT_H_
