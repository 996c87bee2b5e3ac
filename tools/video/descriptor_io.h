// descriptor_io.h: how FFmpeg's libraries write to an output. Only used with FFmpeg.
#pragma once

#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <string_view>

#include "base/descriptor_buffer.h"
#include "base/output_file.h"
#include "video/ffmpeg.h"

namespace stopngo {

/// How the library writes to an output, and goes back in one that is no pipe.
struct DescriptorIo {
  static constexpr int kBuffer = 1 << 16;

  static int Write(void* file, std::uint8_t* bytes, int count) {
    const std::string_view text(reinterpret_cast<const char*>(bytes), static_cast<std::size_t>(count));
    const int error = WriteAll(static_cast<OutputFile*>(file)->Number(), text);
    return error == 0 ? count : AVERROR(error);
  }

  static std::int64_t Seek(void* file, std::int64_t offset, int whence) {
    if (whence == AVSEEK_SIZE) return AVERROR(ENOSYS);
    const off_t place = lseek(static_cast<OutputFile*>(file)->Number(), offset, whence);
    return place >= 0 ? place : AVERROR(errno);
  }

  static AVIOContext* Open(OutputFile& file) {
    auto* const buffer = static_cast<std::uint8_t*>(av_malloc(kBuffer));
    if (buffer == nullptr) return nullptr;
    AVIOContext* const io = Ffmpeg().avio_alloc_context(buffer, kBuffer, 1, &file, nullptr, Write, Seek);
    if (io == nullptr) {
      av_free(buffer);
    } else if (lseek(file.Number(), 0, SEEK_CUR) < 0) {
      io->seekable = 0;
    }
    return io;
  }

  void operator()(AVIOContext* io) const {
    av_freep(&io->buffer);
    Ffmpeg().avio_context_free(&io);
  }
};

}  // namespace stopngo
