# The C++ reference. vex2_configure_reference(FILE HTML ON|OFF FOLDER) writes a configuration of
# Doxygen for all installed headers to FILE. It makes FOLDER/xml and, with HTML, FOLDER/reference.
function(vex2_configure_reference file)
  cmake_parse_arguments(arg "" "HTML;FOLDER" "" ${ARGN})
  get_property(headers GLOBAL PROPERTY vex2_public_headers)
  list(TRANSFORM headers PREPEND ${PROJECT_SOURCE_DIR}/)
  list(JOIN headers " \\\n                         " VEX2_REFERENCE_HEADERS)
  set(VEX2_REFERENCE_HTML NO)
  if(arg_HTML)
    set(VEX2_REFERENCE_HTML YES)
  endif()
  set(VEX2_REFERENCE_FOLDER ${arg_FOLDER})
  configure_file(${PROJECT_SOURCE_DIR}/docs/reference/Doxyfile.in ${file} @ONLY)
endfunction()
