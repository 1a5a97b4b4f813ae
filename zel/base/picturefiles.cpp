#include "zel/base/picturefiles_impl.h"

// jpeglib.h needs size_t and FILE to be declared before it.
#include <csetjmp>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>

#include <jpeglib.h>
// after jpeglib.h
#include <jerror.h>
#include <png.h>

#include "zel/base/littleendian_impl.h"

namespace zel::detail {
namespace {

constexpr std::size_t kBmpHeader = 54;

TColor packed(unsigned r, unsigned g, unsigned b) { return r | g << 8 | b << 16; }
unsigned byteAt(std::string_view bytes, std::size_t i) {
  return static_cast<unsigned char>(bytes[i]);
}
int signedAt(std::string_view bytes, std::size_t i) {
  return static_cast<int>(static_cast<std::uint32_t>(getLittle<4>(bytes.data() + i)));
}

std::vector<std::uint8_t> redGreenBlue(const PictureView& picture) {
  std::vector<std::uint8_t> bytes;
  bytes.reserve(3 * picture.pixels.size());
  for (const TColor c : picture.pixels) {
    bytes.push_back(static_cast<std::uint8_t>(RedOf(c)));
    bytes.push_back(static_cast<std::uint8_t>(GreenOf(c)));
    bytes.push_back(static_cast<std::uint8_t>(BlueOf(c)));
  }
  return bytes;
}

}  // namespace

std::string encodeBmp(const PictureView& picture, std::string& bytes) {
  const auto width = static_cast<std::size_t>(picture.width);
  const auto height = static_cast<std::size_t>(picture.height);
  const std::size_t stride = (3 * width + 3) / 4 * 4;
  if (stride > (std::numeric_limits<std::uint32_t>::max() - kBmpHeader) / height) {
    return "too large for a BMP file";
  }
  bytes.assign(kBmpHeader + stride * height, '\0');
  char* const header = bytes.data();
  header[0] = 'B';
  header[1] = 'M';
  putLittle<4>(header + 2, bytes.size());
  putLittle<4>(header + 10, kBmpHeader);
  putLittle<4>(header + 14, 40);  // size of the second header
  putLittle<4>(header + 18, width);
  putLittle<4>(header + 22, height);  // positive: the rows run from the bottom up
  putLittle<2>(header + 26, 1);       // planes
  putLittle<2>(header + 28, 24);      // bits per pixel
  putLittle<4>(header + 34, stride * height);
  for (std::size_t y = 0; y < height; ++y) {
    char* to = bytes.data() + kBmpHeader + stride * (height - 1 - y);
    for (const TColor c : picture.pixels.subspan(y * width, width)) {
      *to++ = static_cast<char>(BlueOf(c));
      *to++ = static_cast<char>(GreenOf(c));
      *to++ = static_cast<char>(RedOf(c));
    }
  }
  return {};
}

std::string decodeBmp(std::string_view bytes, Picture& picture) {
  if (bytes.size() < kBmpHeader || !bytes.starts_with("BM")) return "not a BMP file";
  const std::size_t first = getLittle<4>(bytes.data() + 10);
  const std::int64_t rows = signedAt(bytes, 22);
  const int columns = signedAt(bytes, 18);
  const std::size_t bits = getLittle<2>(bytes.data() + 28);
  const auto compression = getLittle<4>(bytes.data() + 30);
  // Compression 3 with 32 bits is the plain layout with colour masks, which are the usual ones.
  if ((bits != 24 && bits != 32) || (compression != 0 && !(compression == 3 && bits == 32))) {
    return "only BMP files with 24 or 32 bits and without compression are supported";
  }
  if (columns <= 0 || rows == 0 || rows < -std::numeric_limits<int>::max()) {
    return "bad size of the picture";
  }
  const auto width = static_cast<std::size_t>(columns);
  const auto height = static_cast<std::size_t>(rows < 0 ? -rows : rows);
  const std::size_t pixel = bits / 8;
  const std::size_t stride = (pixel * width + 3) / 4 * 4;
  if (first > bytes.size() || stride > (bytes.size() - first) / height) {
    return "the file ends before the picture";
  }
  picture.width = columns;
  picture.height = static_cast<int>(height);
  picture.pixels.resize(width * height);
  for (std::size_t y = 0; y < height; ++y) {
    std::size_t from = first + stride * (rows < 0 ? y : height - 1 - y);
    for (std::size_t x = 0; x < width; ++x, from += pixel) {
      picture.pixels[y * width + x] =
          packed(byteAt(bytes, from + 2), byteAt(bytes, from + 1), byteAt(bytes, from));
    }
  }
  return {};
}

std::string encodePng(const PictureView& picture, std::string& bytes) {
  png_image image{};
  image.version = PNG_IMAGE_VERSION;
  image.width = static_cast<png_uint_32>(picture.width);
  image.height = static_cast<png_uint_32>(picture.height);
  image.format = PNG_FORMAT_RGB;
  const std::vector<std::uint8_t> pixels = redGreenBlue(picture);
  // Pixels that do not compress, one filter byte per row and the frames of the blocks.
  png_alloc_size_t size =
      pixels.size() + pixels.size() / 100 + static_cast<std::size_t>(picture.height) + 65536;
  bytes.resize(size);
  if (!png_image_write_to_memory(&image, bytes.data(), &size, 0, pixels.data(), 0, nullptr)) {
    return image.message;
  }
  bytes.resize(size);
  return {};
}

std::string decodePng(std::string_view bytes, Picture& picture) {
  png_image image{};
  image.version = PNG_IMAGE_VERSION;
  if (!png_image_begin_read_from_memory(&image, bytes.data(), bytes.size())) return image.message;
  // The compression shrinks at most to a 1032nd; one pixel takes at least one bit of that.
  const std::uint64_t most = (std::uint64_t{bytes.size()} + 16) * 1040 * 8;
  if (std::uint64_t{image.width} * image.height > most ||
      image.width > static_cast<unsigned>(std::numeric_limits<int>::max()) ||
      image.height > static_cast<unsigned>(std::numeric_limits<int>::max())) {
    png_image_free(&image);
    return "announces more pixels than the file can hold";
  }
  image.format = PNG_FORMAT_RGB;
  std::vector<std::uint8_t> pixels;
  try {
    pixels.resize(std::size_t{3} * image.width * image.height);
  } catch (...) {
    png_image_free(&image);
    throw;
  }
  const png_color white{255, 255, 255};
  if (!png_image_finish_read(&image, &white, pixels.data(), 0, nullptr)) return image.message;
  picture.width = static_cast<int>(image.width);
  picture.height = static_cast<int>(image.height);
  picture.pixels.resize(pixels.size() / 3);
  for (std::size_t i = 0; i < picture.pixels.size(); ++i) {
    picture.pixels[i] = packed(pixels[3 * i], pixels[3 * i + 1], pixels[3 * i + 2]);
  }
  return {};
}

namespace {

struct JpegErrors {
  jpeg_error_mgr manager;  // first, so that the library's pointer to it is one to the whole
  std::jmp_buf leave;
  char message[JMSG_LENGTH_MAX];
};

extern "C" void leaveJpeg(j_common_ptr codec) {
  auto* errors = reinterpret_cast<JpegErrors*>(codec->err);
  errors->manager.format_message(codec, errors->message);
  std::longjmp(errors->leave, 1);
}

extern "C" void ignoreJpegMessage(j_common_ptr) {}

/// The library's own writer to memory loses its block when it has to give up, so this one grows a
/// block that the caller owns.
struct JpegOutput {
  jpeg_destination_mgr manager{};  // first, as above
  JOCTET* data = nullptr;
  std::size_t capacity = 0;
  std::size_t size = 0;

  JpegOutput() = default;
  JpegOutput(const JpegOutput&) = delete;
  JpegOutput& operator=(const JpegOutput&) = delete;
  ~JpegOutput() { std::free(data); }
};

JpegOutput& outputOf(j_compress_ptr codec) { return *reinterpret_cast<JpegOutput*>(codec->dest); }

extern "C" boolean growJpeg(j_compress_ptr codec) {
  JpegOutput& output = outputOf(codec);
  const std::size_t used = output.capacity;  // the library calls when the block is full
  const std::size_t capacity = used == 0 ? 65536 : 2 * used;
  auto* block = static_cast<JOCTET*>(std::realloc(output.data, capacity));
  if (!block) ERREXIT1(codec, JERR_OUT_OF_MEMORY, 0);
  output.data = block;
  output.capacity = capacity;
  output.manager.next_output_byte = block + used;
  output.manager.free_in_buffer = capacity - used;
  return TRUE;
}

extern "C" void beginJpeg(j_compress_ptr codec) { growJpeg(codec); }

extern "C" void endJpeg(j_compress_ptr codec) {
  JpegOutput& output = outputOf(codec);
  output.size = output.capacity - output.manager.free_in_buffer;
}

/// The only frame that the library's error exit leaves: nothing in it has a destructor.
bool compress(int width, int height, const std::uint8_t* pixels, JpegOutput& output,
              JpegErrors& errors) {
  jpeg_compress_struct codec;
  std::memset(&codec, 0, sizeof codec);
  codec.err = jpeg_std_error(&errors.manager);
  errors.manager.error_exit = leaveJpeg;
  errors.manager.output_message = ignoreJpegMessage;
  if (setjmp(errors.leave) != 0) {
    jpeg_destroy_compress(&codec);
    return false;
  }
  jpeg_create_compress(&codec);
  output.manager.init_destination = beginJpeg;
  output.manager.empty_output_buffer = growJpeg;
  output.manager.term_destination = endJpeg;
  codec.dest = &output.manager;
  codec.image_width = static_cast<JDIMENSION>(width);
  codec.image_height = static_cast<JDIMENSION>(height);
  codec.input_components = 3;
  codec.in_color_space = JCS_RGB;
  jpeg_set_defaults(&codec);
  jpeg_start_compress(&codec, TRUE);
  while (codec.next_scanline < codec.image_height) {
    // The library takes rows to write as not constant, but only reads them.
    auto* row =
        const_cast<JSAMPROW>(pixels + std::size_t{3} * codec.image_width * codec.next_scanline);
    jpeg_write_scanlines(&codec, &row, 1);
  }
  jpeg_finish_compress(&codec);
  jpeg_destroy_compress(&codec);
  return true;
}

}  // namespace

std::string encodeJpeg(const PictureView& picture, std::string& bytes) {
  const std::vector<std::uint8_t> pixels = redGreenBlue(picture);
  JpegOutput output;
  JpegErrors errors;
  if (!compress(picture.width, picture.height, pixels.data(), output, errors)) {
    return errors.message;
  }
  bytes.assign(reinterpret_cast<const char*>(output.data), output.size);
  return {};
}

}  // namespace zel::detail
