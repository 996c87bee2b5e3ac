// module_note.cpp: what a module's file tells of itself (src/note.cpp).
#include "host/module/module_note.h"

#include <elf.h>
#include <link.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>
#include <string_view>

namespace stopngo {
namespace {

// The name with its closing zero, as a note counts it.
constexpr char kNameText[] = "zetstopngo";
constexpr std::string_view kName{kNameText, sizeof kNameText};
constexpr std::uint32_t kType = 1;

using Bytes = std::span<const std::byte>;

// Parts of a note begin at multiples of 4 bytes; so says the format of 64-bit files as well, if not by the letter.
std::size_t Padded(std::size_t length) { return (length + 3) / 4 * 4; }

/// What follows the name of the first note of ours; empty where there is none.
Bytes Described(Bytes notes) {
  ElfW(Nhdr) header;
  while (notes.size() >= sizeof header) {
    std::memcpy(&header, notes.data(), sizeof header);
    const Bytes rest = notes.subspan(sizeof header);
    const std::size_t named = Padded(header.n_namesz);
    if (named > rest.size() || header.n_descsz > rest.size() - named) return {};
    const std::string_view name(reinterpret_cast<const char*>(rest.data()), header.n_namesz);
    if (name == kName && header.n_type == kType) return rest.subspan(named, header.n_descsz);
    notes = rest.subspan(std::min(named + Padded(header.n_descsz), rest.size()));
  }
  return {};
}

ModuleNote Read(Bytes described) {
  std::int32_t distance = 0;
  if (described.size() <= sizeof distance) return {};
  std::memcpy(&distance, described.data(), sizeof distance);
  const char* const* table = nullptr;  // of kernels, which begins with its name
  std::memcpy(&table, described.data() + distance, sizeof table);
  const Bytes version = described.subspan(sizeof distance);
  const auto* const text = reinterpret_cast<const char*>(version.data());
  return {std::string(text, strnlen(text, version.size())), *table};
}

struct Search {
  const void* address;
  ModuleNote found;
};

bool Holds(const dl_phdr_info& file, const void* address) {
  const auto at = reinterpret_cast<ElfW(Addr)>(address);
  for (const ElfW(Phdr) & segment : std::span(file.dlpi_phdr, file.dlpi_phnum)) {
    const ElfW(Addr) start = file.dlpi_addr + segment.p_vaddr;
    if (segment.p_type == PT_LOAD && at >= start && at - start < segment.p_memsz) return true;
  }
  return false;
}

int Look(dl_phdr_info* file, std::size_t /*size*/, void* search_for) {
  auto& search = *static_cast<Search*>(search_for);
  if (!Holds(*file, search.address)) return 0;
  for (const ElfW(Phdr) & segment : std::span(file->dlpi_phdr, file->dlpi_phnum)) {
    if (segment.p_type != PT_NOTE) continue;
    // The loader tells addresses as numbers. NOLINTNEXTLINE(performance-no-int-to-ptr)
    const auto* const start = reinterpret_cast<const std::byte*>(file->dlpi_addr + segment.p_vaddr);
    const Bytes described = Described({start, segment.p_memsz});
    if (!described.empty()) search.found = Read(described);
  }
  return 1;
}

}  // namespace

ModuleNote NoteOf(const void* address) {
  Search search{address, {}};
  dl_iterate_phdr(Look, &search);
  return search.found;
}

}  // namespace stopngo
