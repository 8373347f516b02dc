# There is no release so far, so this formula has gaps. scripts/fill-formula fills them with the
# project's address and the address and SHA-256 of the release's source.

class Brimlet < Formula
  desc "Show how full the context window of the Codex task in front of you is"
  homepage "https://example.org/brimlet"
  url "https://example.org/brimlet-0.0.0.tar.gz"
  sha256 "0000000000000000000000000000000000000000000000000000000000000000"

  depends_on "cmake" => :build
  depends_on "ninja" => :build
  depends_on macos: :ventura

  # These are linked statically, so that the programs load only macOS's own libraries. The commits are
  # those in scripts/libraries.cmake; with a tag, brew fetches no history.
  resource "simdjson" do
    url "https://github.com/simdjson/simdjson.git",
        tag: "v4.6.7", revision: "cdeb069ad1e8cb2fb479cbb22695cb666cea99ac"
  end

  resource "utf8proc" do
    url "https://github.com/JuliaStrings/utf8proc.git",
        tag: "v2.11.3", revision: "e5e799221b45bbb90f5fdc5c69b6b8dfbf017e78"
  end

  def install
    sources = resources.map do |library|
      library.stage buildpath/"dependencies"/library.name
      "-DFETCHCONTENT_SOURCE_DIR_#{library.name.upcase}=#{buildpath}/dependencies/#{library.name}"
    end
    system "cmake", "-S", ".", "-B", "build", "-G", "Ninja", "-DBRIMLET_TESTS=OFF",
           "-DHOMEBREW_ALLOW_FETCHCONTENT=ON", "-DBRIMLET_BUNDLE_FOLDER=.", *sources, *std_cmake_args
    system "cmake", "--build", "build"
    system "cmake", "--install", "build"
  end

  def caveats
    <<~EOS
      Brimlet.app shows a status item in the menu bar:
        open #{opt_prefix}/Brimlet.app
      Spotlight finds a copy, but no link; replace it after an upgrade:
        cp -R #{opt_prefix}/Brimlet.app /Applications
    EOS
  end

  test do
    assert_match version.to_s, shell_output("#{bin}/brimletctl --version")
  end
end
