// Flips bits of a file one after the other and gives each damaged one to a reader of the program:
//   nadir_flips READER EVERY FIRST FILE...
// EVERY and FIRST choose the bits: every EVERYth, from bit FIRST on. A reader of several files gets them all, and the
// bits of all are flipped. Status 1: a picture was read as another one, or a refusal does not say where.
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <regex>

#include "tests/readers/readers.hpp"

namespace nadir::test {
namespace {

std::string contents(const char* path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) {
    std::fprintf(stderr, "cannot read %s\n", path);
    std::exit(2);
  }
  return std::string(std::istreambuf_iterator<char>(file), {});
}

std::string joined(char** paths, int count) {
  std::string bytes = contents(paths[0]);
  for (int i = 1; i < count; ++i) bytes += between + contents(paths[i]);
  return bytes;
}

// What has to stand in every refusal of a reader, so that people find the damage.
std::regex placeFor(const std::string& reader) {
  if (reader == "camera" || reader == "areas") return std::regex("toml:[0-9]+: ");
  if (reader == "log") return std::regex("frames\\.jsonl: line [0-9]+");
  if (reader == "picture") return std::regex("");  // its caller names the file
  if (reader == "regions") return std::regex("/(summary|scene)\\.json");
  if (reader == "calibration") return std::regex("\\.ya?ml");
  return std::regex("/run\\.json|/(frames|truth)\\.jsonl: line [0-9]+|/tracks has");  // no areas, fewer frames
}

class Damage {
 public:
  Damage(const std::string& reader, std::string bytes)
      : reader_(readerNamed(reader)), place_(placeFor(reader)), bytes_(std::move(bytes)) {
    const Answer whole = reader_.read(bytes_);
    if (whole.refused) {
      std::fprintf(stderr, "%s refuses what is whole: %s\n", reader_.name, whole.sentence.c_str());
      std::exit(2);
    }
    whole_ = whole.fingerprint;
  }

  void flip(size_t bit) {
    bytes_[bit / 8] = static_cast<char>(bytes_[bit / 8] ^ 1 << bit % 8);
    judge(bit, reader_.read(bytes_));
    bytes_[bit / 8] = static_cast<char>(bytes_[bit / 8] ^ 1 << bit % 8);
  }

  size_t bits() const { return 8 * bytes_.size(); }

  int report() const {
    std::printf("%zu flips, %zu refused, %zu read the same, %zu read as they then stood, %zu findings\n",
                refused_ + same_ + others_, refused_, same_, others_, findings_);
    return findings_ ? 1 : 0;
  }

 private:
  void judge(size_t bit, const Answer& answer) {
    (answer.refused ? refused_ : answer.fingerprint == whole_ ? same_ : others_) += 1;
    if (answer.refused && !std::regex_search(answer.sentence, place_))
      find(bit, "does not say where: " + answer.sentence);
    const bool isPicture = std::string(reader_.name) == "picture";
    if (isPicture && !answer.refused && answer.fingerprint != whole_) find(bit, "is read as another picture");
  }

  void find(size_t bit, const std::string& what) {
    if (++findings_ <= 5)
      std::fprintf(stderr, "%s: bit %zu of byte %zu: %s\n", reader_.name, bit % 8, bit / 8, what.c_str());
  }

  const Reader& reader_;
  std::regex place_;
  std::string bytes_;
  uint64_t whole_ = 0;
  size_t refused_ = 0, same_ = 0, others_ = 0, findings_ = 0;
};

}  // namespace
}  // namespace nadir::test

int main(int argc, char** argv) {
  if (argc < 5) {
    std::fputs("nadir_flips READER EVERY FIRST FILE...\n", stderr);
    return 2;
  }
  nadir::test::Damage damage(argv[1], nadir::test::joined(argv + 4, argc - 4));
  const size_t every = std::strtoul(argv[2], nullptr, 10), first = std::strtoul(argv[3], nullptr, 10);
  for (size_t bit = first; bit < damage.bits(); bit += every) damage.flip(bit);
  return damage.report();
}
