// exchange: exports and imports RDML, or does only the part of the work that the compression and
// XML libraries do, so that both can be compared from outside. Prints the peak of the heap in
// bytes.

#include <expat.h>
#include <malloc.h>
#include <zlib.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>
#include <string_view>

#include "lab/Error.h"
#include "lab/compare/Diff.h"
#include "lab/import/Import.h"
#include "lab/model/RunReader.h"
#include "lab/rdml/RdmlExport.h"

// All memory, including that of the C libraries, is allocated here, so the peak is exact and the
// same on every run.
extern "C" {
void* __libc_malloc(std::size_t size);                        // NOLINT: the system's name
void* __libc_calloc(std::size_t count, std::size_t size);     // NOLINT: the system's name
void* __libc_realloc(void* memory, std::size_t size);         // NOLINT: the system's name
void* __libc_memalign(std::size_t alignment, std::size_t n);  // NOLINT: the system's name
void __libc_free(void* memory);                               // NOLINT: the system's name
}

namespace {

std::size_t heapNow = 0;
std::size_t heapPeak = 0;

void* counted(void* memory) {
  if (memory == nullptr) return memory;
  heapNow += malloc_usable_size(memory);
  heapPeak = std::max(heapPeak, heapNow);
  return memory;
}

void forget(void* memory) {
  if (memory != nullptr) heapNow -= malloc_usable_size(memory);
}

}  // namespace

extern "C" {

void* malloc(std::size_t size) {
  return counted(__libc_malloc(size));
}

void* calloc(std::size_t count, std::size_t size) {
  return counted(__libc_calloc(count, size));
}

void* realloc(void* memory, std::size_t size) {
  const std::size_t before = memory != nullptr ? malloc_usable_size(memory) : 0;
  void* const moved = __libc_realloc(memory, size);
  if (moved == nullptr) return moved;
  heapNow -= before;
  return counted(moved);
}

void* aligned_alloc(std::size_t alignment, std::size_t size) {
  return counted(__libc_memalign(alignment, size));
}

void free(void* memory) {
  forget(memory);
  __libc_free(memory);
}

}  // extern "C"

namespace {

std::string contentOf(const char* path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

// Compresses the file as archives do.
int pack(const char* path, const char* target) {
  std::string bytes = contentOf(path);
  std::string packed(compressBound(bytes.size()), '\0');
  z_stream stream{};
  if (deflateInit2(&stream, Z_DEFAULT_COMPRESSION, Z_DEFLATED, -MAX_WBITS, 8, Z_DEFAULT_STRATEGY) !=
      Z_OK) {
    return 1;
  }
  stream.next_in = reinterpret_cast<Bytef*>(bytes.data());
  stream.avail_in = static_cast<uInt>(bytes.size());
  stream.next_out = reinterpret_cast<Bytef*>(packed.data());
  stream.avail_out = static_cast<uInt>(packed.size());
  const int status = deflate(&stream, Z_FINISH);
  packed.resize(stream.total_out);
  deflateEnd(&stream);
  std::ofstream(target, std::ios::binary) << packed;
  return status == Z_STREAM_END ? 0 : 1;
}

// Decompresses the output of `pack` and parses it into elements and texts.
int parse(const char* path) {
  std::string packed = contentOf(path);
  XML_Parser parser = XML_ParserCreateNS(nullptr, '\n');
  std::size_t found = 0;
  XML_SetUserData(parser, &found);
  XML_SetElementHandler(
      parser,
      [](void* state, const XML_Char*, const XML_Char**) { ++*static_cast<std::size_t*>(state); },
      [](void*, const XML_Char*) {});
  XML_SetCharacterDataHandler(parser, [](void* state, const XML_Char*, int length) {
    *static_cast<std::size_t*>(state) += static_cast<std::size_t>(length);
  });
  z_stream stream{};
  if (inflateInit2(&stream, -MAX_WBITS) != Z_OK) return 1;
  stream.next_in = reinterpret_cast<Bytef*>(packed.data());
  stream.avail_in = static_cast<uInt>(packed.size());
  std::array<char, 1U << 16U> part{};
  int status = Z_OK;
  bool isRight = true;
  while (status == Z_OK && isRight) {
    stream.next_out = reinterpret_cast<Bytef*>(part.data());
    stream.avail_out = static_cast<uInt>(part.size());
    status = inflate(&stream, Z_NO_FLUSH);
    const auto size = static_cast<int>(part.size() - stream.avail_out);
    isRight = XML_Parse(parser, part.data(), size, status == Z_STREAM_END) == XML_STATUS_OK;
  }
  inflateEnd(&stream);
  XML_ParserFree(parser);
  return isRight && status == Z_STREAM_END && found > 0 ? 0 : 1;
}

int run(std::string_view command, const char* source, const char* target) {
  using namespace vex2::lab;
  if (command == "pack") return pack(source, target);
  if (command == "parse") return parse(source);
  if (command == "export") {
    std::ofstream out(target, std::ios::binary);
    ExportRdml(source, out, {.plate = {}, .embedsDocument = false, .cq = {}});
    return out.good() ? 0 : 1;
  }
  if (command == "export-whole") {
    std::ofstream out(target, std::ios::binary);
    ExportRdml(source, out);
    return out.good() ? 0 : 1;
  }
  if (command == "import") {
    Import(source, target, {.replace = true});
    return 0;
  }
  if (command == "read-both") {
    return RunReader(source).Readings().FrameCount() > 0 &&
                   RunReader(target).Readings().FrameCount() > 0
               ? 0
               : 1;
  }
  if (command == "diff") return Diff(source, target).empty() ? 0 : 1;
  return 2;
}

}  // namespace

int main(int count, char** arguments) {
  if (count != 4) {
    std::fputs(
        "usage: vex2_bench_exchange pack|parse|export|export-whole|import|read-both|diff SOURCE "
        "TARGET\n",
        stderr);
    return 2;
  }
  const std::size_t before = heapNow;
  heapPeak = before;
  try {
    const int status = run(arguments[1], arguments[2], arguments[3]);
    if (status == 0) std::printf("%zu\n", heapPeak - before);
    return status;
  } catch (const vex2::lab::Error& error) {
    std::fprintf(stderr, "vex2_bench_exchange: %s\n", error.what());
    return 1;
  }
}
