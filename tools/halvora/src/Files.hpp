#pragma once

#include "CliIO.hpp"

#include <EDIDKit/Bytes.hpp>
#include <EDIDKit/EDID.hpp>

#include <string>

namespace Halvora {

/// The whole content of a file, or of standard input for "-". Throws a data
/// error naming the file when it cannot be read.
EDIDKit::Bytes readInput(const std::string& path, CliIO& io);

/// Reads an EDID (binary or hex text) from a file or standard input. Throws a
/// data error "FILE: …" saying in words what is wrong with it.
EDIDKit::EDID readEDID(const std::string& path, CliIO& io);

/// The name a file is called by in messages ("standard input" for "-").
std::string displayName(const std::string& path);

/// Replaces `path` with `content` atomically: the bytes go to a temporary file
/// beside it that is renamed over it, so a reader (or a failure half-way)
/// never leaves a partial file. Throws a data error when that fails.
void writeFileAtomically(const std::string& path, const std::string& content);

/// Writes an EDID where the user asked: to `outPath` when given, else to
/// standard output; as a hex dump when `hex`. Binary data is not written to a
/// terminal (a usage error).
void writeEDID(const EDIDKit::EDID& edid, const std::string* outPath, bool hex, CliIO& io);

} // namespace Halvora
