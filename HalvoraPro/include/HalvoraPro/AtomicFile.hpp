#pragma once

#include <filesystem>
#include <string_view>

namespace HalvoraPro {

/// Replaces the file at `path` with `content` atomically: the bytes go to a
/// temporary file in the same folder, are flushed to disk, and the temporary
/// file is renamed over `path`. A reader sees the old content or the new,
/// never a part; a writer killed half-way leaves at most a stray temporary
/// file. Throws std::runtime_error describing the failure (the temporary
/// file is removed).
void writeFileAtomically(const std::filesystem::path& path, std::string_view content);

} // namespace HalvoraPro
