# Runs the rvpcv tool on good and bad input: results must be written, and bad
# input must give a message and exit code 1 (2 for usage), never a crash.
# Usage: cmake -DTOOL=<rvpcv> -DWORK=<scratch dir> -P check_cli.cmake
file(REMOVE_RECURSE "${WORK}")
file(MAKE_DIRECTORY "${WORK}")

function(expect code pattern)
  execute_process(COMMAND "${TOOL}" ${ARGN} RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE err)
  if(NOT rc STREQUAL "${code}")
    message(FATAL_ERROR "rvpcv ${ARGN}: exit ${rc}, expected ${code}\n${out}${err}")
  endif()
  if(NOT "${out}${err}" MATCHES "${pattern}")
    message(FATAL_ERROR "rvpcv ${ARGN}: output does not match '${pattern}':\n${out}${err}")
  endif()
endfunction()

expect(0 "rvpCV SSE3 \\(m7\\) 7.1.1 \\(r37466\\)" --version)
expect(0 "absdiff" --help)
expect(0 "absdiff +[0-9.]+ ms" demo "${WORK}/demo")
foreach(f scene.png scene-next.png absdiff.png)
  if(NOT EXISTS "${WORK}/demo/${f}")
    message(FATAL_ERROR "demo did not write ${f}")
  endif()
endforeach()
expect(0 "" --threads 1 absdiff "${WORK}/demo/scene.png" "${WORK}/demo/scene-next.png" "${WORK}/out.pgm")

# Bad input.
file(WRITE "${WORK}/text.png" "this is not an image\n")
file(WRITE "${WORK}/small.pgm" "P5\n2 2\n255\nabcd")
file(WRITE "${WORK}/short.pgm" "P5\n20 20\n255\nabcd")
file(WRITE "${WORK}/badheader.pgm" "P5\n-4 x\n255\n")
execute_process(COMMAND head -c 200 "${WORK}/demo/scene.png" OUTPUT_FILE "${WORK}/truncated.png")
expect(1 "cannot open" absdiff "${WORK}/missing.png" "${WORK}/demo/scene.png" "${WORK}/o.png")
expect(1 "not a PNG, PGM or PPM" absdiff "${WORK}/text.png" "${WORK}/demo/scene.png" "${WORK}/o.png")
expect(1 "not a readable PNG" absdiff "${WORK}/truncated.png" "${WORK}/demo/scene.png" "${WORK}/o.png")
expect(1 "truncated" absdiff "${WORK}/short.pgm" "${WORK}/short.pgm" "${WORK}/o.png")
expect(1 "malformed" absdiff "${WORK}/badheader.pgm" "${WORK}/small.pgm" "${WORK}/o.png")
expect(1 "differ in size" absdiff "${WORK}/small.pgm" "${WORK}/demo/scene.png" "${WORK}/o.png")
expect(1 "cannot write" absdiff "${WORK}/small.pgm" "${WORK}/small.pgm" "${WORK}/no/such/dir/o.png")
expect(2 "usage: rvpcv absdiff" absdiff "${WORK}/small.pgm")
expect(2 "unknown command" frobnicate)
expect(2 "--threads" --threads 0 absdiff)

# Morphology.
expect(0 "" erode "${WORK}/demo/scene.png" "${WORK}/eroded.png" --mask disk:2)
expect(0 "" dilate "${WORK}/demo/scene.png" "${WORK}/dilated.pgm" --mask rect:5x3)
expect(1 "unknown mask" erode "${WORK}/small.pgm" "${WORK}/o.png" --mask blob:3)
expect(1 "rect:WxH" dilate "${WORK}/small.pgm" "${WORK}/o.png" --mask rect:0x3)
expect(2 "usage: rvpcv erode" erode "${WORK}/small.pgm" "${WORK}/o.png")
