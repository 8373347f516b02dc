# Fills in the Homebrew formula for a made-up release. A stand-in for its base class records what the
# formula declares and the commands that it would run.

require "pathname"

ROOT = Pathname(__dir__).parent.parent
SHA256 = "7" * 64
URL = "https://example.com/owner/brimlet/archive/refs/tags/v1.2.3.tar.gz"

def expect(wanted, got, what)
  abort "#{what}: #{wanted.inspect} is wanted, got #{got.inspect}" unless wanted === got
end

class Resource < Struct.new(:name, :said)
  def method_missing(key, *values)
    said[key] = values
  end

  def stage(folder)
    said[:folder] = folder.to_s
  end
end

class Formula
  class << self
    attr_reader :said, :resources, :check

    def inherited(formula)
      formula.instance_eval { @said, @resources = {}, [] }
    end

    def method_missing(key, *values)
      (@said[key] ||= []).push(*values)
    end

    def resource(name, &block)
      @resources << Resource.new(name, {}).tap { |resource| resource.instance_eval(&block) }
    end

    def test(&block)
      @check = block
    end
  end

  FACTS = { buildpath: Pathname("/build"), opt_prefix: Pathname("/opt"),
            bin: Pathname("/bin"), version: "1.2.3",
            std_cmake_args: ["-DCMAKE_INSTALL_PREFIX=/opt"] }.freeze
  FACTS.each { |name, fact| define_method(name) { fact } }

  attr_reader :commands

  def resources
    self.class.resources
  end

  def system(*command)
    (@commands ||= []) << command
  end

  def shell_output(command)
    command
  end

  def assert_match(wanted, got)
    @commands << [wanted, got]
  end
end

text = IO.popen([ROOT.join("scripts/fill-formula").to_s, "1.2.3", URL, SHA256], &:read)
expect(true, $?.success?, "filling in")
eval(text)
said = Brimlet.said
expect([[URL], [SHA256], ["https://example.com/owner/brimlet"]],
       said.values_at(:url, :sha256, :homepage), "what is filled in")
expect(nil, text[/example\.org|no release so far/], "gaps that are left")

pins = ROOT.join("scripts/libraries.cmake").read
           .scan(/GIT_REPOSITORY (\S+)\s+GIT_TAG (\h{40})\)\s+# (\S+)/)
expect(2, pins.size, "the libraries that a Mac builds")
expect(pins, Brimlet.resources.map { |resource|
  url, options = resource.said[:url]
  [url, options[:revision], options[:tag].delete_prefix("v")]
}, "resources")

formula = Brimlet.new
formula.install
formula.instance_eval(&Brimlet.check)
configure, *others = formula.commands
Brimlet.resources.each do |resource|
  option = "-DFETCHCONTENT_SOURCE_DIR_#{resource.name.upcase}=#{resource.said[:folder]}"
  expect(true, configure.include?(option), option)
end
%w[-DCMAKE_INSTALL_PREFIX=/opt -DBRIMLET_BUNDLE_FOLDER=.].each do |option|
  expect(true, configure.include?(option), "where it is installed")
end
expect([%w[cmake --build build], %w[cmake --install build], ["1.2.3", "/bin/brimletctl --version"]],
       others, "commands")
expect(/open \/opt\/Brimlet\.app/, formula.caveats, "how it is opened")
