# Homebrew formula: the library, KelvaHelper.app, kelva and kelva-vcam. Install from a tap with
#   brew install --HEAD kelva
class Kelva < Formula
  desc "Camera library, launcher agent and tools for Kelva USB cameras"
  homepage "https://kelva.example/"
  license "MIT"
  head "https://kelva.example/kelva.git", branch: "main"

  depends_on "cmake" => :build
  depends_on "ninja" => :build
  depends_on "boost" # its headers are part of the library's interface
  depends_on "jpeg-turbo"
  depends_on "libdeflate"
  depends_on "libexif"
  depends_on macos: :big_sur
  depends_on "openssl@3"
  depends_on "qt"

  def install
    system "cmake", "-S", ".", "-B", "build", "-G", "Ninja", "-DKELVA_BUILD_TESTS=OFF",
           "-DCMAKE_OSX_ARCHITECTURES=#{Hardware::CPU.arch}", "-DKELVA_LAUNCH_AGENT_DIR=#{prefix}",
           "-DKELVA_LAUNCH_AGENT_APP=#{opt_prefix}/Applications/KelvaHelper.app", *std_cmake_args
    system "cmake", "--build", "build"
    system "cmake", "--install", "build"
  end

  service do
    name macos: "com.kelva.KelvaHelper" # the LaunchAgent that the installation puts there
  end

  test do
    system "plutil", "-lint", prefix/"Applications/KelvaHelper.app/Contents/Info.plist"
    (testpath/"test.cpp").write <<~EOS
      #include <kelva/Camera.h>
      int main() { return Camera::throwExceptions_ ? 0 : 1; }
    EOS
    system ENV.cxx, "-std=c++20", "test.cpp", "-I#{include}", "-I#{Formula["boost"].opt_include}", "-L#{lib}", "-lkelva",
           "-framework", "IOKit", "-framework", "CoreFoundation", "-o", "test"
    system "./test"
  end
end
