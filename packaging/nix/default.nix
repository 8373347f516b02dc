# Installs the archive of a release: nix-build -E '(import <nixpkgs> {}).callPackage ./default.nix {}'
# The program is static, so nothing in it needs a patch. scripts/release fills the gaps.
{ lib, stdenvNoCC, fetchurl }:

let
  version = "@VERSION@";
  archives = {
    x86_64-linux = { processor = "x86_64"; sha256 = "@X86_64@"; };
    aarch64-linux = { processor = "aarch64"; sha256 = "@AARCH64@"; };
  };
  archive = archives.${stdenvNoCC.hostPlatform.system};
in
stdenvNoCC.mkDerivation {
  pname = "brimlet";
  inherit version;
  src = fetchurl {
    url = "@URL@/brimlet-${version}-linux-${archive.processor}.tar.gz";
    inherit (archive) sha256;
  };
  dontBuild = true;
  dontFixup = true;
  installPhase = ''
    mkdir -p $out
    cp -R bin share $out
  '';
  meta = {
    description = "Show how full the context window of a Codex task is";
    mainProgram = "brimletctl";
    platforms = lib.attrNames archives;
  };
}
