#pragma once

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace HalvoraPlatform {

/// Replaces the file at `path` with `content` atomically: the bytes go to a
/// temporary file in the same folder, are flushed to disk, and the temporary
/// file is renamed over `path`. A reader sees the old content or the new,
/// never a part; a writer killed half-way leaves at most a stray temporary
/// file. The new file gets `permissions` when given (a replaced file's own,
/// say), else read-write for its owner and readable by all, less the umask.
/// Throws std::runtime_error describing the failure (the temporary file is
/// removed).
void writeFileAtomically(const std::filesystem::path& path, std::string_view content,
                         std::optional<std::filesystem::perms> permissions = std::nullopt);

/// The temporary file a write of `path` uses, told apart by `tag`: a hidden
/// file in the same folder (".displays.json.tmp-TAG").
std::filesystem::path temporaryFileFor(const std::filesystem::path& path, const std::string& tag);

/// Removes the temporary files that writers of `path` killed half-way left
/// behind; returns how many there were. Errors are ignored: a leftover that
/// cannot be removed now is tried again next time.
std::size_t removeUnfinishedWrites(const std::filesystem::path& path);

} // namespace HalvoraPlatform
