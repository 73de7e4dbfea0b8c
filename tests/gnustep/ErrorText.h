#ifndef KELVA_TESTS_GNUSTEP_ERROR_TEXT_H_
#define KELVA_TESTS_GNUSTEP_ERROR_TEXT_H_

#include <functional>
#include <string>

/// Runs `action` and returns the text of the OsxCameraError that leaves it; empty when nothing does. In a file of plain
/// C++: the Objective-C runtime used here lets C++ exceptions pass, but does not catch them by their class.
std::string TextOfErrorFrom(const std::function<void()>& action);

#endif  // KELVA_TESTS_GNUSTEP_ERROR_TEXT_H_
