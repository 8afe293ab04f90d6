# Writes a C++ source that defines `voxtrel::platform::target::<FUNCTION>()`
# returning the bytes of INPUT. Run with cmake -P; bytes are written as a
# hexadecimal array, so any text (quotes, backslashes) survives.
#   -DINPUT=<file> -DOUTPUT=<file.cpp> -DFUNCTION=<name> -DHEADER=<include>
file(READ "${INPUT}" content HEX)
string(LENGTH "${content}" hexLength)
math(EXPR size "${hexLength} / 2")
# CMake's regular expressions have no counted repeats: cut 16 bytes a line.
set(bytes "")
set(offset 0)
while(offset LESS hexLength)
  string(SUBSTRING "${content}" ${offset} 32 line)
  string(REGEX REPLACE "([0-9a-f][0-9a-f])" "'\\\\x\\1'," line "${line}")
  string(APPEND bytes "${line}\n    ")
  math(EXPR offset "${offset} + 32")
endwhile()
file(WRITE "${OUTPUT}.tmp"
"// Generated from ${INPUT} at build time; do not edit.
#include \"${HEADER}\"

namespace voxtrel::platform::target {

namespace {
constexpr char kBytes[] = {
    ${bytes}'\\0'};
}  // namespace

std::string_view ${FUNCTION}() { return {kBytes, ${size}}; }

}  // namespace voxtrel::platform::target
")
file(COPY_FILE "${OUTPUT}.tmp" "${OUTPUT}" ONLY_IF_DIFFERENT)
file(REMOVE "${OUTPUT}.tmp")
