// The program started as a user starts it.
#include "tests/tool/tool.hpp"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <png.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <limits>
#include <sstream>

#define STB_IMAGE_WRITE_IMPLEMENTATION
#define STB_IMAGE_WRITE_STATIC
#include <stb_image_write.h>

namespace nadir::test {

namespace fs = std::filesystem;

namespace {

void sendTo(const std::string& file, int descriptor) {
  const int opened = open(file.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
  if (opened < 0 || dup2(opened, descriptor) < 0) _exit(126);
}

void limitFiles(uint64_t bytes) {
  const rlimit limit{bytes, bytes};
  std::signal(SIGXFSZ, SIG_IGN);
  if (setrlimit(RLIMIT_FSIZE, &limit) != 0) _exit(126);
}

Bytes taken(const std::string& path) {
  const Bytes bytes = readFile(path);
  fs::remove(path);
  return bytes;
}

// Two bytes per sample, the high one first, or one.
Bytes bigEndian(const Picture& picture) {
  Bytes bytes;
  for (const uint16_t v : picture.samples) {
    if (picture.bits == 16) bytes += static_cast<char>(v >> 8);
    bytes += static_cast<char>(v & 255);
  }
  return bytes;
}

Bytes littleEndian(uint32_t value, int count) {
  Bytes bytes;
  for (; count > 0; --count, value >>= 8) bytes += static_cast<char>(value & 255);
  return bytes;
}

std::vector<uint16_t> samplesOf(png_structp png, png_infop info, const Picture& picture) {
  png_bytepp rows = png_get_rows(png, info);
  std::vector<uint16_t> samples;
  for (uint32_t y = 0; y < picture.height; ++y)
    for (uint32_t i = 0; i < picture.width * picture.channels; ++i)
      samples.push_back(picture.bits == 8 ? rows[y][i] : png_get_uint_16(rows[y] + 2 * i));
  return samples;
}

}  // namespace

Picture picture(uint32_t width, uint32_t height, uint32_t bits, std::vector<uint16_t> samples) {
  return {width, height, 1, bits, std::move(samples), {}};
}

Picture halved(const Picture& full) {
  Picture half = picture(full.width / 2, full.height / 2, 16, {});
  for (uint32_t y = 0; y < half.height; ++y)
    for (uint32_t x = 0; x < half.width; ++x) {
      uint32_t sum = 0, count = 0;
      for (uint32_t i = 0; i < 4; ++i) {
        const uint32_t value = full.at(2 * x + i % 2, 2 * y + i / 2);
        sum += value;
        count += value != 0;
      }
      half.samples.push_back(static_cast<uint16_t>(count ? (sum + count / 2) / count : 0));
    }
  return half;
}

Picture mirrored(Picture picture) {
  for (auto row = picture.samples.begin(); row != picture.samples.end(); row += picture.width)
    std::reverse(row, row + picture.width);
  return picture;
}

Bytes pgm(const Picture& picture) {
  std::ostringstream header;
  header << (picture.channels == 1 ? "P5" : "P6") << "\n# made by a test\n"
         << picture.width << ' ' << picture.height << '\n'
         << (picture.bits == 16 ? 65535 : 255) << '\n';
  return header.str() + bigEndian(picture);
}

Bytes bmp(const Picture& picture) {
  const uint32_t row = (picture.width * 3 + 3) / 4 * 4, header = 54, size = header + row * picture.height;
  Bytes bytes = "BM" + littleEndian(size, 4) + littleEndian(0, 4) + littleEndian(header, 4) + littleEndian(40, 4) +
                littleEndian(picture.width, 4) + littleEndian(picture.height, 4) + littleEndian(1, 2) +
                littleEndian(24, 2) + Bytes(24, '\0');
  for (uint32_t y = picture.height; y-- > 0;) {
    Bytes samples;
    for (uint32_t x = 0; x < picture.width; ++x) samples += Bytes(3, static_cast<char>(picture.at(x, y)));
    samples.resize(row);
    bytes += samples;
  }
  return bytes;
}

Bytes jpeg(const Picture& picture) {
  Bytes bytes;
  const std::vector<uint8_t> samples(picture.samples.begin(), picture.samples.end());
  const auto append = [](void* to, void* data, int size) {
    static_cast<Bytes*>(to)->append(static_cast<const char*>(data), static_cast<size_t>(size));
  };
  EXPECT_TRUE(stbi_write_jpg_to_func(append, &bytes, static_cast<int>(picture.width), static_cast<int>(picture.height),
                                     static_cast<int>(picture.channels), samples.data(), 100));
  return bytes;
}

Picture readPng(const std::string& path) {
  Picture picture;
  std::FILE* file = std::fopen(path.c_str(), "rb");
  EXPECT_NE(file, nullptr) << path;
  if (!file) return picture;
  png_structp png = png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
  png_infop info = png_create_info_struct(png);
  if (setjmp(png_jmpbuf(png))) {
    ADD_FAILURE() << path << " is no readable PNG";
    std::exit(1);
  }
  png_init_io(png, file);
  png_read_png(png, info, PNG_TRANSFORM_IDENTITY, nullptr);
  picture.width = png_get_image_width(png, info);
  picture.height = png_get_image_height(png, info);
  picture.channels = png_get_channels(png, info);
  picture.bits = png_get_bit_depth(png, info);
  picture.samples = samplesOf(png, info, picture);
  png_textp entries = nullptr;
  const int count = png_get_text(png, info, &entries, nullptr);
  for (int i = 0; i < count; ++i) picture.text[entries[i].key] = entries[i].text;
  png_destroy_read_struct(&png, &info, nullptr);
  std::fclose(file);
  return picture;
}

void writePng(const std::string& path, const Picture& picture) {
  Bytes bytes = bigEndian(picture);
  std::vector<png_bytep> rows(picture.height);
  const size_t stride = bytes.size() / picture.height;
  for (size_t y = 0; y < rows.size(); ++y) rows[y] = reinterpret_cast<png_bytep>(bytes.data()) + y * stride;
  std::vector<png_text> texts;
  for (const auto& [key, value] : picture.text) {
    png_text text{};
    text.compression = PNG_TEXT_COMPRESSION_NONE;
    text.key = const_cast<char*>(key.c_str());
    text.text = const_cast<char*>(value.c_str());
    texts.push_back(text);
  }
  std::FILE* file = std::fopen(path.c_str(), "wb");
  ASSERT_NE(file, nullptr) << path;
  png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
  png_infop info = png_create_info_struct(png);
  if (setjmp(png_jmpbuf(png))) std::abort();
  png_init_io(png, file);
  constexpr int types[] = {PNG_COLOR_TYPE_GRAY, PNG_COLOR_TYPE_GRAY_ALPHA, PNG_COLOR_TYPE_RGB};
  png_set_IHDR(png, info, picture.width, picture.height, static_cast<int>(picture.bits), types[picture.channels - 1],
               PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
  png_set_text(png, info, texts.data(), static_cast<int>(texts.size()));
  png_set_rows(png, info, rows.data());
  png_write_png(png, info, PNG_TRANSFORM_IDENTITY, nullptr);
  png_destroy_write_struct(&png, &info);
  std::fclose(file);
}

Bytes readFile(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  EXPECT_TRUE(in) << path;
  std::ostringstream bytes;
  bytes << in.rdbuf();
  return bytes.str();
}

void writeFile(const std::string& path, const Bytes& bytes) { std::ofstream(path, std::ios::binary) << bytes; }

Folder::Folder() {
  static std::atomic<int> count{0};
  root_ = testing::TempDir() + "nadir-tool-" + std::to_string(getpid()) + "-" + std::to_string(count++);
  fs::create_directories(root_);
}

Folder::~Folder() { fs::remove_all(root_); }

std::vector<std::string> Folder::names() const {
  std::vector<std::string> names;
  for (const auto& entry : fs::recursive_directory_iterator(root_)) names.push_back(entry.path().filename().string());
  std::sort(names.begin(), names.end());
  return names;
}

std::string replaced(std::string text, const std::string& from, const std::string& to) {
  const size_t place = text.find(from);
  EXPECT_NE(place, std::string::npos) << from;
  return text.replace(place, from.size(), to);
}

float floatAt(const Bytes& bytes, size_t place) {
  uint32_t bits = 0;
  for (size_t i = 4; i-- > 0;) bits = bits << 8 | static_cast<uint8_t>(bytes[place + i]);
  float number;
  std::memcpy(&number, &bits, sizeof number);
  return number;
}

std::vector<std::string> with(std::vector<std::string> arguments, const std::vector<std::string>& more) {
  arguments.insert(arguments.end(), more.begin(), more.end());
  return arguments;
}

// The process.
std::string toolPath() {
  const char* other = std::getenv("NADIR_TOOL");
  return other ? other : NADIR_TOOL;
}

int Folder::start(const std::vector<std::string>& arguments, const std::function<void()>& prepare) const {
  const std::string tool = toolPath();
  std::vector<char*> argv = {const_cast<char*>(tool.c_str())};
  for (const std::string& argument : arguments) argv.push_back(const_cast<char*>(argument.c_str()));
  argv.push_back(nullptr);
  const pid_t child = fork();
  if (child == 0) {
    if (chdir(root_.c_str()) != 0) _exit(126);
    sendTo(root_ + ".out", STDOUT_FILENO);
    sendTo(root_ + ".err", STDERR_FILENO);
    prepare();
    execv(tool.c_str(), argv.data());
    _exit(127);
  }
  return child;
}

Outcome Folder::finish(int child) const {
  int status = 0;
  EXPECT_EQ(waitpid(child, &status, 0), child);
  EXPECT_TRUE(WIFEXITED(status)) << "ended by signal " << (WIFSIGNALED(status) ? WTERMSIG(status) : 0);
  return {WEXITSTATUS(status), taken(root_ + ".out"), taken(root_ + ".err")};
}

Outcome Folder::run(const std::vector<std::string>& arguments, uint64_t fileLimit) const {
  return finish(start(arguments, [fileLimit] {
    if (fileLimit) limitFiles(fileLimit);
  }));
}

Outcome Folder::runWithout(int stream, const std::vector<std::string>& arguments) const {
  return finish(start(arguments, [stream] { close(stream); }));
}

int Folder::linesOf(const std::string& file) const {
  std::ifstream in(path(file));
  return static_cast<int>(std::count(std::istreambuf_iterator<char>(in), {}, '\n'));
}

Outcome Folder::runUntil(const std::vector<std::string>& arguments, const std::function<bool()>& ready,
                         int signal) const {
  const pid_t child = start(arguments, [] {});
  int status = 0;
  pid_t ended = 0;
  while ((ended = waitpid(child, &status, WNOHANG)) == 0 && !ready()) usleep(200);
  if (ended == 0) {
    kill(child, signal);
    waitpid(child, &status, 0);
  }
  return {WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status), taken(root_ + ".out"),
          taken(root_ + ".err")};
}

double numberAfter(const std::string& text, const std::string& label) {
  const size_t found = text.find(label);
  EXPECT_NE(found, std::string::npos) << label << " is not in\n" << text;
  if (found == std::string::npos) return std::numeric_limits<double>::quiet_NaN();
  const size_t digits = text.find_first_not_of(" \":", found + label.size());
  return std::strtod(text.c_str() + digits, nullptr);
}

}  // namespace nadir::test
