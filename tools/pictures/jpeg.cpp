// Decodes JPEG by libjpeg.
#include "tools/pictures/jpeg.hpp"

#include <csetjmp>
#include <cstdio>
#include <cstring>
#include <new>

#include <jpeglib.h>
// It needs the one above.
#include <jerror.h>

#include "tools/base/error.hpp"

namespace nadir::tool {

namespace {

// Hostile pictures have thousands, each of which is decoded over all of the picture.
constexpr int mostScans = 200;

// libjpeg is C, through which no exception may pass: it jumps back to where it was called.
struct Decoder {
  jpeg_decompress_struct state;
  jpeg_error_mgr errors;
  jpeg_progress_mgr progress;
  std::jmp_buf caller;
  char reason[JMSG_LENGTH_MAX];
  bool hasNoMemory;
};

[[noreturn]] void leave(j_common_ptr state) {
  auto* decoder = static_cast<Decoder*>(state->client_data);
  decoder->hasNoMemory = decoder->errors.msg_code == JERR_OUT_OF_MEMORY;
  decoder->errors.format_message(state, decoder->reason);
  std::longjmp(decoder->caller, 1);
}

// A level below 0 warns of damage, after which pixels are guessed.
void leaveAtWarnings(j_common_ptr state, int level) {
  if (level < 0) leave(state);
}

void countScans(j_common_ptr state) {
  if (reinterpret_cast<j_decompress_ptr>(state)->input_scan_number > mostScans) ERREXIT(state, JERR_BAD_PROGRESSION);
}

// False where the decoder has jumped out of `work`, which must hold nothing that would want to be destroyed.
template <class Work>
bool succeeds(Decoder& decoder, Work work) {
  if (setjmp(decoder.caller)) return false;
  work(decoder.state);
  return true;
}

class Jpeg {
 public:
  explicit Jpeg(const Bytes& bytes) : Jpeg() {
    attempt([&](jpeg_decompress_struct& state) {
      jpeg_create_decompress(&state);
      state.progress = &decoder_.progress;
      jpeg_mem_src(&state, bytes.data(), bytes.size());
      jpeg_read_header(&state, TRUE);
    });
  }
  Jpeg(const Jpeg&) = delete;
  Jpeg& operator=(const Jpeg&) = delete;
  ~Jpeg() { jpeg_destroy_decompress(&decoder_.state); }

  Raster raster() {
    const bool isGrey = decoder_.state.jpeg_color_space == JCS_GRAYSCALE;
    Raster raster{decoder_.state.image_width, decoder_.state.image_height, isGrey ? 1u : 3u, 8, {}, {}};
    checkRasterSize(raster.width, raster.height);
    decoder_.state.out_color_space = isGrey ? JCS_GRAYSCALE : JCS_RGB;
    const size_t stride = size_t{raster.width} * raster.channels;
    std::vector<uint8_t> samples(stride * raster.height);
    attempt([&](jpeg_decompress_struct& state) { readRows(state, samples.data(), stride); });
    raster.samples.assign(samples.begin(), samples.end());
    return raster;
  }

 private:
  // What is read after this one is done is given back where reading fails.
  Jpeg() {
    decoder_.state.err = jpeg_std_error(&decoder_.errors);
    decoder_.state.client_data = &decoder_;
    decoder_.errors.error_exit = leave;
    decoder_.errors.emit_message = leaveAtWarnings;
    decoder_.progress.progress_monitor = countScans;
  }

  static void readRows(jpeg_decompress_struct& state, uint8_t* samples, size_t stride) {
    jpeg_start_decompress(&state);
    while (state.output_scanline < state.output_height) {
      JSAMPROW row = samples + stride * state.output_scanline;
      jpeg_read_scanlines(&state, &row, 1);
    }
    jpeg_finish_decompress(&state);
  }

  template <class Work>
  void attempt(Work work) {
    if (succeeds(decoder_, work)) return;
    if (decoder_.hasNoMemory) throw std::bad_alloc();
    throw Error("it is damaged or of a kind that is not read (" + std::string(decoder_.reason) + ")");
  }

  Decoder decoder_{};
};

}  // namespace

bool isJpeg(const Bytes& bytes) { return bytes.size() >= 3 && std::memcmp(bytes.data(), "\xFF\xD8\xFF", 3) == 0; }

Raster decodeJpeg(const Bytes& bytes) { return Jpeg(bytes).raster(); }

}  // namespace nadir::tool
