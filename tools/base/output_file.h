// output_file.h: outputs that appear whole or not at all, alone or together.
#pragma once

#include <sys/stat.h>

#include <initializer_list>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>

#include "base/descriptor_buffer.h"
#include "base/interruption.h"
#include "host/common/descriptor.h"

namespace stopngo {

/// Throws Failure with the path and the reason, or NobodyReads for a pipe that has lost its reader.
[[noreturn]] void FailWriting(const std::string& path, int error);

class OutputFile;

/// All of them or none: everything is written to the disk before the first one takes its place, in the order
/// given, and when one cannot the ones before give theirs back. Nulls are left out. Throws as FailWriting.
void CommitTogether(std::initializer_list<OutputFile*> files);

/// A file that is written under a name of its own beside the path and takes its place when it is committed;
/// destroyed without that, it is gone. Where the path is a link, the file that it leads to is replaced. The
/// new file has the old one's mode and, where that is permitted, its owner. What is no regular file (a device,
/// a pipe), or is open already ("-", /dev/stdout), is written in place.
class OutputFile {
 public:
  /// What a power cut may take is not worth wearing a memory card out for, where it is written anew each second.
  enum class Lasts { kForGood, kUntilPowerFails };

  /// Throws as FailWriting when it cannot be written.
  explicit OutputFile(std::string path, Lasts lasts = Lasts::kForGood);
  ~OutputFile();
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;

  std::ostream& Stream() { return stream_; }
  /// For who writes past the stream.
  [[nodiscard]] int Number() const { return file_->Number(); }
  /// Throws as FailWriting when not everything could be written that was.
  void Flush();
  /// Throws as FailWriting; the old file is there then.
  void Commit() { CommitTogether({this}); }

 private:
  friend void CommitTogether(std::initializer_list<OutputFile*> files);

  void Open();
  void OpenBeside(const struct stat* old);
  void Complete();
  void Close();
  void TakePlace(bool revocable);
  [[nodiscard]] bool GiveBack() const;
  void Settle();
  void SyncFolder() const;

  std::string path_;
  Lasts lasts_;
  std::string target_;                    ///< the path, behind its links
  std::optional<UnfinishedFile> beside_;  ///< none: written in place
  std::optional<Descriptor> file_;
  std::optional<DescriptorBuffer> buffer_;
  std::ostream stream_{nullptr};
  enum class Place { kBeside, kNew, kExchanged, kReplaced } place_ = Place::kBeside;
};

/// Writes a file, whole or not at all. Throws as FailWriting.
void WriteFile(const std::string& path, std::string_view bytes,
               OutputFile::Lasts lasts = OutputFile::Lasts::kForGood);

}  // namespace stopngo
