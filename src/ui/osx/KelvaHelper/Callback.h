#ifndef KELVA_HELPER_CALLBACK_H_
#define KELVA_HELPER_CALLBACK_H_

#include <boost/shared_ptr.hpp>

#include "Camera.h"

/// The attach callback: launches the desktop application when the flag (a bool) that `context` points at is true. Keeps
/// nothing of the camera. An application that is not installed is passed over; a launch that fails is not reported.
void Callback(boost::shared_ptr<Camera> camera, void* context);

#endif  // KELVA_HELPER_CALLBACK_H_
