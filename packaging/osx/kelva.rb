# Homebrew formula: the library and KelvaHelper.app. Install from a tap with
#   brew install --HEAD kelva
class Kelva < Formula
  desc "Camera library and launcher agent for Kelva USB cameras"
  homepage "https://kelva.example/"
  license "MIT"
  head "https://kelva.example/kelva.git", branch: "main"

  depends_on "boost" => :build
  depends_on "cmake" => :build
  depends_on "ninja" => :build
  depends_on macos: :big_sur

  def install
    system "cmake", "-S", ".", "-B", "build", "-G", "Ninja", "-DKELVA_BUILD_TESTS=OFF", *std_cmake_args
    system "cmake", "--build", "build"
    system "cmake", "--install", "build"
  end

  service do
    run [opt_prefix/"Applications/KelvaHelper.app/Contents/MacOS/KelvaHelper"]
    keep_alive successful_exit: false
    process_type :background
  end

  test do
    system "plutil", "-lint", prefix/"Applications/KelvaHelper.app/Contents/Info.plist"
    (testpath/"test.cpp").write <<~EOS
      #include <Camera.h>
      int main() { return Camera::throwExceptions_ ? 0 : 1; }
    EOS
    system ENV.cxx, "-std=c++20", "test.cpp", "-I#{include}/kelva", "-L#{lib}", "-lkelva",
           "-framework", "IOKit", "-framework", "CoreFoundation", "-o", "test"
    system "./test"
  end
end
