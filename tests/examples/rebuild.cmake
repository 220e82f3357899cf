# SPDX-License-Identifier: MIT
#
# Writes the sample inputs again and compares them byte for byte with those checked in:
#   cmake -DGENERATE=PROGRAM -DEXAMPLES=FOLDER -DOUTDIR=FOLDER -P rebuild.cmake

file(REMOVE_RECURSE ${OUTDIR})
execute_process(COMMAND ${GENERATE} ${OUTDIR} RESULT_VARIABLE result)
if(NOT result EQUAL 0)
  message(FATAL_ERROR "${GENERATE} failed: ${result}")
endif()

# Both ways, so that a sample without a generator is found too.
file(GLOB rebuilt RELATIVE ${OUTDIR} ${OUTDIR}/*)
file(GLOB kept RELATIVE ${EXAMPLES} ${EXAMPLES}/*.out)
if(NOT rebuilt STREQUAL kept)
  message(FATAL_ERROR "The generator writes '${rebuilt}', checked in are '${kept}'")
endif()
foreach(name IN LISTS kept)
  execute_process(
    COMMAND ${CMAKE_COMMAND} -E compare_files ${OUTDIR}/${name} ${EXAMPLES}/${name}
    RESULT_VARIABLE result)
  if(NOT result EQUAL 0)
    message(FATAL_ERROR "${name} differs from the one checked in; see examples/README.md")
  endif()
endforeach()
