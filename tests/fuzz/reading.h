// reading.h: what the fuzz targets of files share: a folder to put them in, and how a reader may end.
#pragma once

#include <string>
#include <string_view>

#include "host/common/failure.h"
#include "input.h"
#include "support/temporary_folder.h"

namespace fuzz {

/// Made once: a folder a run would be most of its time.
inline const stopngo::test::TemporaryFolder& Folder() {
  static const stopngo::test::TemporaryFolder folder;
  return folder;
}

/// Whether the reader took the file. What it refuses, it refuses in a sentence that names the file; any other
/// exception is a finding.
template <typename Read>
bool ReadOrRefuse(const std::string& path, Read read) {
  try {
    read();
    return true;
  } catch (const stopngo::Failure& failure) {
    Expect(std::string_view(failure.what()).find(path) != std::string_view::npos,
           std::string("a refusal that names no file: ").append(failure.what()));
    return false;
  }
}

}  // namespace fuzz
