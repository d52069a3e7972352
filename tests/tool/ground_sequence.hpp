// A rendered sequence and nadir ground over it, for the tests of what comes of its frames.
#pragma once

#include <filesystem>
#include <sstream>

#include "tests/tool/schema.hpp"

namespace nadir::test {

constexpr int frames = 6;

inline std::string number(int frame) {
  const std::string digits = std::to_string(frame);
  return std::string(6 - digits.size(), '0') + digits;
}

class GroundSequence : public testing::Test {
 protected:
  GroundSequence() {
    EXPECT_EQ(folder
                  .run({"synth", "s", "--frames", std::to_string(frames), "--size", "160x120", "--no-truth-pictures",
                        "--height", "3500"})
                  .status,
              0);
    writeFile(folder.path("a.toml"),
              "[[area]]\nname = \"left\"\nground_mm = [[-1400, -2200], [-250, -2200], [-250, 200], [-1400, 200]]\n"
              "[[area]]\nname = \"nobody\"\nground_mm = [[-200, -100], [100, -100], [100, 400], [-200, 400]]\n");
  }

  std::vector<std::string> arguments(const std::string& output, std::vector<std::string> more = {}) {
    std::vector<std::string> all = {"ground", "s",  "--camera", "s/camera.toml", "--areas",
                                    "a.toml", "-o", output,     "--average",     "3"};
    all.insert(all.end(), more.begin(), more.end());
    return all;
  }

  Outcome ground(const std::string& output, std::vector<std::string> more = {}) {
    return folder.run(arguments(output, std::move(more)));
  }

  std::vector<Json> lines(const std::string& output) {
    std::vector<Json> all;
    std::istringstream in(readFile(folder.path(output + "/frames.jsonl")));
    for (std::string line; std::getline(in, line) && !in.eof();) all.push_back(parseJson(line));
    return all;
  }

  Picture map(const std::string& output, const char* kind, int frame) {
    return readPng(folder.path(output + "/" + kind + "/" + number(frame) + ".png"));
  }

  // Every file of the two results.
  void expectSame(const std::string& a, const std::string& b) {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder.path(a)))
      if (entry.is_regular_file()) names.push_back(std::filesystem::relative(entry.path(), folder.path(a)).string());
    EXPECT_GT(names.size(), 2u);
    for (const std::string& name : names)
      EXPECT_EQ(readFile(folder.path(a + "/" + name)), readFile(folder.path(b + "/" + name))) << name;
    const auto count = [this](const std::string& result) {
      return std::distance(std::filesystem::recursive_directory_iterator(folder.path(result)),
                           std::filesystem::recursive_directory_iterator());
    };
    EXPECT_EQ(count(a), count(b));
  }

  // The six frames over and over, under new numbers.
  void lengthen(int to) {
    for (const std::string side : {"left", "right"})
      for (int frame = frames; frame < to; ++frame)
        std::filesystem::create_symlink(number(frame % frames) + ".png",
                                        folder.path("s/" + side + "/" + number(frame) + ".png"));
  }

  void damage(const std::string& file) { writeFile(folder.path(file), readFile(folder.path(file)).substr(0, 900)); }

  Folder folder;
};

}  // namespace nadir::test
