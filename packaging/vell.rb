# Homebrew's formula: builds from source. Nothing is published yet: `homepage`, `url`, `sha256` and `head` are to be filled in with
# the first release.
class Vell < Formula
  desc "Read and change outlines at a shell, in scripts and with agents"
  homepage "https://vell.invalid/"
  url "https://vell.invalid/vell-0.1.0.tar.gz"
  sha256 "0000000000000000000000000000000000000000000000000000000000000000"
  head "https://vell.invalid/vell.git", branch: "main"

  depends_on "asio" => :build
  depends_on "cli11" => :build
  depends_on "cmake" => :build
  depends_on "fmt" => :build
  depends_on "ninja" => :build
  depends_on "pegtl" => :build
  depends_on "simdjson" => :build
  depends_on "spdlog" => :build
  depends_on "valijson" => :build
  depends_on "cmark-gfm"
  depends_on macos: :ventura
  depends_on "pcre2"
  depends_on "pugixml"
  depends_on "utf8proc"

  def install
    system "cmake", "-S", ".", "-B", "build", "-G", "Ninja", "-DVELL_TESTS=OFF", *std_cmake_args
    system "cmake", "--build", "build"
    system "cmake", "--install", "build"
  end

  test do
    ENV["HOME"] = Dir.mktmpdir("vell", "/tmp") # a socket's path has to be short
    (testpath/"list.md").write("- [ ] Milk\n")
    begin
      system bin/"vell", "open", "outline", testpath/"list.md"
      assert_match "Milk", shell_output("#{bin}/vell get outline rows -o markdown")
    ensure
      system bin/"vell-headless", "stop"
    end
  end
end
