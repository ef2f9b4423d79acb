# Writes a C++ source that defines `std::string_view NAMESPACE::FUNCTION()`
# returning the bytes of INPUT. Run as a script: cmake -DINPUT=… -DOUTPUT=…
# -DNAMESPACE=… -DFUNCTION=… -P EmbedFile.cmake
file(READ "${INPUT}" content HEX)
string(REGEX REPLACE "([0-9a-f][0-9a-f])" "'\\\\x\\1'," bytes "${content}")
file(WRITE "${OUTPUT}.tmp"
    "// Generated from ${INPUT}; do not edit.\n"
    "#include <string_view>\n"
    "namespace ${NAMESPACE} {\n"
    "namespace { constexpr char bytes[] = {${bytes} '\\0'}; }\n"
    "std::string_view ${FUNCTION}() { return {bytes, sizeof bytes - 1}; }\n"
    "}\n")
file(COPY_FILE "${OUTPUT}.tmp" "${OUTPUT}" ONLY_IF_DIFFERENT)
file(REMOVE "${OUTPUT}.tmp")
