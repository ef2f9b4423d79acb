#pragma once

#include <nlohmann/json.hpp>
#include <string>

namespace Halvora {

/// A JSON value as one line that is safe on a terminal: beside the C0
/// controls JSON always escapes, DEL and the C1 controls (which JSON leaves
/// as they are) are written as "\u007f" … "\u009f". Parsed back, it is the
/// same value; text that is not UTF-8 is replaced, as in the text report.
std::string printableJSON(const nlohmann::json& value);

} // namespace Halvora
