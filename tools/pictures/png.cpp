// libpng reports errors with longjmp, which skips destructors. So every step that can fail runs inside attempt(), does
// nothing there but call libpng and touch plain values, and all memory belongs to objects outside.
#include "tools/pictures/png.hpp"

#include <png.h>

#include <algorithm>
#include <csetjmp>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <new>

#include "tools/base/error.hpp"
#include "tools/base/text.hpp"

namespace nadir::tool {

namespace {

constexpr size_t signatureSize = 8;
// For 40 pictures of two rendered scenes, in all: level 1 takes 285 ms for 5.3 MB, level 3 takes 415 ms for 5.0 MB, and
// level 6, zlib's own choice, takes 1084 ms for 4.7 MB.
constexpr int compressionLevel = 3;

// What went wrong.
struct Message {
  char text[128] = "";
  bool memory = false;  // there was not enough of it
};

// libpng reports a lack of memory as it reports damage, and passes over it where it can do without.
png_voidp allocated(png_structp png, png_alloc_size_t size) {
  void* memory = std::malloc(size);
  if (!memory) static_cast<Message*>(png_get_mem_ptr(png))->memory = true;
  return memory;
}

void freeAllocated(png_structp, png_voidp memory) { std::free(memory); }

[[noreturn]] void keepMessage(png_structp png, png_const_charp text) {
  auto* message = static_cast<Message*>(png_get_error_ptr(png));
  std::snprintf(message->text, sizeof message->text, "%s", text);
  png_longjmp(png, 1);
}

void ignoreWarning(png_structp, png_const_charp) {}

// A text that libpng cannot take, because it is too long or one too many, could be the scale of what is measured.
void refuseLostText(png_structp png, png_const_charp text) {
  for (const char* chunk : {"tEXt", "zTXt", "iTXt"})
    if (std::strncmp(text, chunk, 4) == 0) png_error(png, text);
}

template <class Step>
bool attempt(png_structp png, Step step) {
  if (setjmp(png_jmpbuf(png))) return false;
  step();
  return true;
}

// ---- reading ----

// A text of 8 KB can be unpacked to 8 MB. All of them together may take 64 MB.
constexpr png_alloc_size_t largestChunk = size_t{1} << 20;
constexpr png_uint_32 mostTexts = 64;

constexpr bool isLittleEndian = __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__;

struct Source {
  const uint8_t* next;
  size_t left;
};

void takeBytes(png_structp png, png_bytep out, size_t count) {
  auto* source = static_cast<Source*>(png_get_io_ptr(png));
  if (count > source->left) png_error(png, "it ends too early");
  std::memcpy(out, source->next, count);
  source->next += count;
  source->left -= count;
}

class PngReader {
 public:
  explicit PngReader(const Bytes& bytes) : source_{bytes.data(), bytes.size()} {
    png_ = png_create_read_struct_2(PNG_LIBPNG_VER_STRING, &message_, keepMessage, refuseLostText, &message_, allocated,
                                    freeAllocated);
    info_ = png_ ? png_create_info_struct(png_) : nullptr;
    if (!info_) {
      png_destroy_read_struct(&png_, &info_, nullptr);
      throw std::bad_alloc();
    }
    png_set_read_fn(png_, &source_, takeBytes);
    png_set_chunk_malloc_max(png_, largestChunk);
    png_set_chunk_cache_max(png_, mostTexts);
    // A text that was damaged would otherwise be passed over, and a default taken for what it says.
    png_set_crc_action(png_, PNG_CRC_ERROR_QUIT, PNG_CRC_ERROR_QUIT);
  }
  PngReader(const PngReader&) = delete;
  PngReader& operator=(const PngReader&) = delete;
  ~PngReader() { png_destroy_read_struct(&png_, &info_, nullptr); }

  Raster read() {
    attemptToRead([this] { readHeader(); });
    Raster raster = described();
    readPixels(raster);
    return raster;
  }

 private:
  template <class Step>
  void attemptToRead(Step step) {
    const bool done = attempt(png_, step);
    if (message_.memory) throw std::bad_alloc();
    if (!done) throw Error(std::string("it is damaged (") + message_.text + ")");
  }

  void readHeader() {
    png_read_info(png_, info_);
    png_set_expand(png_);
    png_set_strip_alpha(png_);
    if (isLittleEndian) png_set_swap(png_);  // PNG is big-endian
    png_set_interlace_handling(png_);
    png_read_update_info(png_, info_);
  }

  Raster described() const {
    Raster raster;
    raster.width = png_get_image_width(png_, info_);
    raster.height = png_get_image_height(png_, info_);
    raster.channels = png_get_channels(png_, info_);
    raster.bits = png_get_bit_depth(png_, info_);
    checkRasterSize(raster.width, raster.height);
    return raster;
  }

  // Rows of 16 bits go where they stay; those of 8 bits are widened.
  void readPixels(Raster& raster) {
    const size_t stride = png_get_rowbytes(png_, info_);
    raster.samples.resize(size_t{raster.width} * raster.height * raster.channels);
    Bytes narrow(raster.bits == 8 ? raster.samples.size() : 0);
    auto* const pixels = raster.bits == 8 ? narrow.data() : reinterpret_cast<png_bytep>(raster.samples.data());
    std::vector<png_bytep> rows(raster.height);
    for (size_t y = 0; y < rows.size(); ++y) rows[y] = pixels + y * stride;
    attemptToRead([this, &rows] {
      png_read_image(png_, rows.data());
      png_read_end(png_, info_);
    });
    std::copy(narrow.begin(), narrow.end(), raster.samples.begin());
    raster.text = text();
  }

  TextChunks text() const {
    png_textp entries = nullptr;
    const int count = png_get_text(png_, info_, &entries, nullptr);
    TextChunks chunks;
    for (int i = 0; i < count; ++i) chunks[entries[i].key] = entries[i].text ? entries[i].text : "";
    return chunks;
  }

  Message message_;
  Source source_;
  png_structp png_ = nullptr;
  png_infop info_ = nullptr;
};

// ---- writing ----

// Everything that one encoding needs, laid out before libpng starts.
struct Layout {
  uint32_t width, height;
  int colourType, bits;
  std::vector<png_bytep> rows;
  std::vector<png_text> text;
};

void appendBytes(png_structp png, png_bytep bytes, size_t count) {
  auto* out = static_cast<Bytes*>(png_get_io_ptr(png));
  try {
    out->insert(out->end(), bytes, bytes + count);
  } catch (const std::bad_alloc&) {
    static_cast<Message*>(png_get_error_ptr(png))->memory = true;
  }
}

class PngWriter {
 public:
  PngWriter() {
    png_ = png_create_write_struct_2(PNG_LIBPNG_VER_STRING, &message_, keepMessage, ignoreWarning, &message_, allocated,
                                     freeAllocated);
    info_ = png_ ? png_create_info_struct(png_) : nullptr;
    if (!info_) {
      png_destroy_write_struct(&png_, &info_);
      throw std::bad_alloc();
    }
    png_set_write_fn(png_, &bytes_, appendBytes, nullptr);
  }
  PngWriter(const PngWriter&) = delete;
  PngWriter& operator=(const PngWriter&) = delete;
  ~PngWriter() { png_destroy_write_struct(&png_, &info_); }

  Bytes write(Layout& layout) {
    const bool done = attempt(png_, [this, &layout] {
      png_set_IHDR(png_, info_, layout.width, layout.height, layout.bits, layout.colourType, PNG_INTERLACE_NONE,
                   PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
      png_set_compression_level(png_, compressionLevel);
      png_set_text(png_, info_, layout.text.data(), static_cast<int>(layout.text.size()));
      png_write_info(png_, info_);
      png_write_image(png_, layout.rows.data());
      png_write_end(png_, info_);
    });
    if (message_.memory) throw std::bad_alloc();
    if (!done) throw Error(std::string("cannot make a PNG: ") + message_.text);
    return std::move(bytes_);
  }

 private:
  Message message_;
  Bytes bytes_;
  png_structp png_ = nullptr;
  png_infop info_ = nullptr;
};

// libpng's records want mutable characters but only read them.
std::vector<png_text> textRecords(const TextChunks& text) {
  std::vector<png_text> records;
  for (const auto& [key, value] : text) {
    png_text record{};
    record.compression = PNG_TEXT_COMPRESSION_NONE;
    record.key = const_cast<char*>(key.c_str());
    record.text = const_cast<char*>(value.c_str());
    record.text_length = value.size();
    records.push_back(record);
  }
  return records;
}

Bytes encodeSamples(Bytes& samples, uint32_t width, uint32_t height, int colourType, int bits, const TextChunks& text) {
  Layout layout{width, height, colourType, bits, std::vector<png_bytep>(height), textRecords(text)};
  const size_t stride = samples.size() / height;
  for (uint32_t y = 0; y < height; ++y) layout.rows[y] = samples.data() + y * stride;
  return PngWriter().write(layout);
}

}  // namespace

bool isPng(const Bytes& bytes) {
  return bytes.size() >= signatureSize && png_sig_cmp(bytes.data(), 0, signatureSize) == 0;
}

Raster decodePng(const Bytes& bytes) { return PngReader(bytes).read(); }

Bytes encodePng(const Grid<uint8_t>& picture, const TextChunks& text) {
  Bytes samples(picture.pixels.begin(), picture.pixels.end());
  return encodeSamples(samples, picture.width, picture.height, PNG_COLOR_TYPE_GRAY, 8, text);
}

Bytes encodePng(const Grid<uint16_t>& picture, const TextChunks& text) {
  Bytes samples;
  samples.reserve(picture.pixels.size() * 2);
  for (const uint16_t v : picture.pixels) {
    samples.push_back(static_cast<uint8_t>(v >> 8));
    samples.push_back(static_cast<uint8_t>(v & 255));
  }
  return encodeSamples(samples, picture.width, picture.height, PNG_COLOR_TYPE_GRAY, 16, text);
}

Bytes encodePng(const Grid<Rgb>& picture, const TextChunks& text) {
  Bytes samples;
  samples.reserve(picture.pixels.size() * 3);
  for (const Rgb c : picture.pixels) samples.insert(samples.end(), {c.r, c.g, c.b});
  return encodeSamples(samples, picture.width, picture.height, PNG_COLOR_TYPE_RGB, 8, text);
}

}  // namespace nadir::tool
