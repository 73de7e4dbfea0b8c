// An application's own classes of names that the library has, with members of the same names.

#include <cstdlib>

class Camera {
 public:
  Camera(int width, int height);
  virtual ~Camera();
  virtual void Draw();
  virtual bool Open();
  static bool throwExceptions_;

 private:
  double matrix_[64];
};

namespace {
bool drawing = false;
int drawn = 0;
// The library must not come here.
void OnlyForTheScene() {
  if (!drawing) std::abort();
}
}  // namespace

// Unlike the library's it is no std::exception, which its typeinfo says.
class CameraError {
 public:
  virtual ~CameraError();
  virtual int Code() const;
};

CameraError::~CameraError() = default;

int CameraError::Code() const {
  return 7;
}

Camera::Camera(int width, int height) : matrix_{static_cast<double>(width), static_cast<double>(height)} {
  OnlyForTheScene();
}

Camera::~Camera() {
  OnlyForTheScene();
}

void Camera::Draw() {
  drawn += static_cast<int>(matrix_[0] + matrix_[1]);
}

bool Camera::Open() {
  std::abort();
}

int DrawScene() {
  drawing = true;
  Camera(3, 4).Draw();
  drawing = false;
  return drawn + CameraError().Code();
}
