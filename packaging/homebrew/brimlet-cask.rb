# There is no notarized release so far, so this cask has gaps: the project's address, the version, and
# the SHA-256 of the release's Brimlet-VERSION.zip. macOS would not open a bundle that is signed ad hoc.

cask "brimlet" do
  version "0.0.0"
  sha256 "0000000000000000000000000000000000000000000000000000000000000000"

  url "https://example.org/brimlet/releases/download/v#{version}/Brimlet-#{version}.zip"
  name "Brimlet"
  desc "Show how full the context window of the Codex task in front of you is"
  homepage "https://example.org/brimlet"

  depends_on macos: ">= :ventura"

  app "Brimlet.app"
  binary "bin/brimletctl"
  manpage "share/man/man1/brimletctl.1"

  uninstall quit: "com.orvellan.brimlet"

  zap trash: [
    "~/Library/Application Support/Brimlet",
    "~/Library/Preferences/com.orvellan.brimlet.plist",
  ]
end
