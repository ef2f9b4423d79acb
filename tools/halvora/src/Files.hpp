#pragma once

#include "CliIO.hpp"

#include <EDIDKit/Bytes.hpp>
#include <EDIDKit/EDID.hpp>
#include <filesystem>
#include <cstddef>
#include <string>

namespace Halvora {

/// The largest EDID input, a file of its own or one a rig names: bigger than
/// any EDID (at most 256 blocks of 128 bytes) by far, so that a disk image
/// given by mistake stops there.
inline constexpr std::size_t maxEDIDFileSize = std::size_t{1} << 20;

/// The whole content of a file, or of standard input for "-", up to 1 MiB
/// (far more than the 256 blocks of an EDID; a device that never ends, or a
/// disk image given by mistake, stops there). Throws a data error naming the
/// file when it cannot be read or is longer.
EDIDKit::Bytes readInput(const std::string& path, CliIO& io);
/// The same for a file only.
EDIDKit::Bytes readFileInput(const std::filesystem::path& path);

/// Reads an EDID (binary or hex text) from a file or standard input. Throws a
/// data error "FILE: …" saying in words what is wrong with it.
EDIDKit::EDID readEDID(const std::string& path, CliIO& io);

/// The name a file is called by in messages ("standard input" for "-").
std::string displayName(const std::string& path);

/// The file that writing to `path` replaces or creates: `path` itself when it
/// is new or a regular file, or the end of the symbolic links it leads
/// through. Throws a usage error when that is a folder, a device, a FIFO or a
/// socket (or `path` ends in a slash): the tool writes only files.
std::filesystem::path outputFile(const std::string& path);

/// Writes `content` to the file `outputFile(path)` names, atomically: the
/// bytes go to a temporary file beside it that is renamed over it, so a
/// reader (or a failure half-way) never sees a partial file. A replaced file
/// keeps its permissions, and a symbolic link stays a link to it. Throws a
/// data error when the write fails.
void writeOutputFile(const std::string& path, const std::string& content);

/// Writes an EDID where the user asked: to `outPath` when given, else to
/// standard output; as a hex dump when `hex`. Binary data is not written to a
/// terminal (a usage error).
void writeEDID(const EDIDKit::EDID& edid, const std::string* outPath, bool hex, CliIO& io);

} // namespace Halvora
