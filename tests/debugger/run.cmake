# Stops the program in gdb and compares how arrays look.
# Input: GDB, PROGRAM, SOURCE, PRINTERS
execute_process(COMMAND ${GDB} -nx -batch -ex "set width 0" -ex "source ${PRINTERS}"
  -ex "break ${SOURCE}:9" -ex run -ex "print columns" -ex "print cube" -ex "print flags"
  ${PROGRAM} OUTPUT_VARIABLE output ERROR_VARIABLE errors)
foreach(expected
    "TDynArray of 2 x 3 = {{1, 2, 3}, {4, 5, 6}}"
    "TDynArray of 2 x 1 x 2 = {{{1, 2}}, {{3, 4}}}"
    "TDynArray of 2 = {true, false}")
  string(FIND "${output}" "${expected}" found)
  if(found EQUAL -1)
    message(FATAL_ERROR "gdb does not show ${expected}\n${output}\n${errors}")
  endif()
endforeach()
