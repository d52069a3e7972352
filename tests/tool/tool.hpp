// Runs the built tool in a folder of its own, and makes and reads its files without its code.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <vector>

namespace nadir::test {

using Bytes = std::string;

struct Picture {
  uint32_t width = 0, height = 0, channels = 1, bits = 16;
  std::vector<uint16_t> samples;
  std::map<std::string, std::string> text;  // of a PNG

  uint16_t at(uint32_t x, uint32_t y) const { return samples[size_t{y} * width + x]; }
};

Picture picture(uint32_t width, uint32_t height, uint32_t bits, std::vector<uint16_t> samples);
Picture mirrored(Picture picture);
Picture halved(const Picture& full);  // every pixel the mean of those in its block of 2 x 2 that are not 0

Bytes pgm(const Picture& picture);   // of three channels: PPM
Bytes bmp(const Picture& picture);   // one channel of 8 bits, stored as three
Bytes jpeg(const Picture& picture);  // 8 bits, of the best quality

// A PNG that libpng reads and writes for the tests; an unreadable file fails the test and gives an empty picture.
Picture readPng(const std::string& path);
void writePng(const std::string& path, const Picture& picture);

Bytes readFile(const std::string& path);
void writeFile(const std::string& path, const Bytes& bytes);

// A text with its first FROM exchanged, which fails the test where there is none.
std::string replaced(std::string text, const std::string& from, const std::string& to);

// The little-endian float that begins at a byte.
float floatAt(const Bytes& bytes, size_t place);

std::vector<std::string> with(std::vector<std::string> arguments, const std::vector<std::string>& more);

struct Outcome {
  int status;
  std::string out, err;
};

// The program that is tested: what the variable NADIR_TOOL names, or the one that was built with the tests.
std::string toolPath();

// A folder that disappears with the object.
class Folder {
 public:
  Folder();
  Folder(const Folder&) = delete;
  Folder& operator=(const Folder&) = delete;
  ~Folder();

  std::string path(const std::string& name) const { return root_ + "/" + name; }
  std::vector<std::string> names() const;

  // Runs the tool inside the folder.
  //
  // fileLimit  what a file may grow to before a write fails, bytes; 0: no limit.
  Outcome run(const std::vector<std::string>& arguments, uint64_t fileLimit = 0) const;

  // Runs the tool with one of its standard streams closed.
  Outcome runWithout(int stream, const std::vector<std::string>& arguments) const;

  // Runs the tool and sends it a signal as soon as ready() says so. The status of a run that the signal ended is 128
  // and the signal's number.
  Outcome runUntil(const std::vector<std::string>& arguments, const std::function<bool()>& ready, int signal) const;

  // The bytes that a shell counts: 0 of a file that does not exist.
  int linesOf(const std::string& file) const;

 private:
  int start(const std::vector<std::string>& arguments, const std::function<void()>& prepare) const;
  Outcome finish(int child) const;

  std::string root_;
};

// The number behind a JSON object's "name": or behind a table's label.
double numberAfter(const std::string& text, const std::string& label);

}  // namespace nadir::test
