# Tests of the project's documents: the format description, the README, the examples.

find_package(nlohmann_json REQUIRED)
foreach(program test_format test_lab)
  if(TARGET ${program})
    target_link_libraries(${program} PRIVATE nlohmann_json::nlohmann_json)
  endif()
endforeach()
add_test(NAME documents.format
         COMMAND Python3::Interpreter ${CMAKE_CURRENT_SOURCE_DIR}/format/read_document_test.py)
set(command "")
if(TARGET vex)
  set(command --vex $<TARGET_FILE:vex>)
  set_tests_properties(documents.format PROPERTIES ENVIRONMENT VEX_COMMAND=$<TARGET_FILE:vex>)
endif()
add_test(NAME documents.pages
         COMMAND Python3::Interpreter ${CMAKE_CURRENT_SOURCE_DIR}/documents/check_documents.py
                 ${command})

# Each declaration in an installed header must have a comment, and no comment may name something
# that does not exist.
find_program(VEX2_DOXYGEN doxygen)
if(VEX2_DOXYGEN AND TARGET vex2lab)
  set(reference ${CMAKE_CURRENT_BINARY_DIR}/reference)
  file(MAKE_DIRECTORY ${reference})
  vex2_configure_reference(${reference}/Doxyfile HTML OFF FOLDER ${reference})
  add_test(NAME documents.reference COMMAND ${VEX2_DOXYGEN} ${reference}/Doxyfile)
  # A header in which one declaration has no comment must be reported.
  add_test(NAME documents.reference.self
           COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/documents/check_reference
                   ${VEX2_DOXYGEN} ${reference}/Doxyfile ${reference}/self)
else()
  message(STATUS "documents.reference is left out: doxygen is missing; scripts/setup installs it")
endif()

# The site must build without a warning, all its links must work, and no page may be wider than a
# phone.
find_program(VEX2_SPHINX sphinx-build)
if(VEX2_DOXYGEN AND VEX2_SPHINX AND TARGET site AND TARGET vex2lab
   AND NOT VEX2_SANITIZE AND NOT VEX2_COVERAGE)
  set(site ${PROJECT_BINARY_DIR}/site)
  add_test(NAME documents.site
           COMMAND Python3::Interpreter ${PROJECT_SOURCE_DIR}/docs/site/build.py ${site}/Doxyfile
                   ${PROJECT_BINARY_DIR}/tools/vex/pages/man1 ${site})
  add_test(NAME documents.site.width
           COMMAND Python3::Interpreter ${PROJECT_SOURCE_DIR}/docs/site/check_width.py ${site}/html)
  set_tests_properties(documents.site PROPERTIES FIXTURES_SETUP site)
  set_tests_properties(documents.site.width PROPERTIES FIXTURES_REQUIRED site SKIP_RETURN_CODE 77)
  # A link to a missing file, a link to a missing heading and a script from the network must be
  # reported.
  add_test(NAME documents.site.self
           COMMAND Python3::Interpreter ${PROJECT_SOURCE_DIR}/docs/site/check_links.py
                   ${CMAKE_CURRENT_SOURCE_DIR}/self/site)
  set_tests_properties(documents.site.self PROPERTIES PASS_REGULAR_EXPRESSION
    "#nowhere leads to no place.*elsewhere.js is loaded.*missing.html leads to no file")
endif()

# Each mutation must match the sources: a text that is no longer in its source would mutate nothing.
add_test(NAME documents.mutations
         COMMAND Python3::Interpreter ${CMAKE_CURRENT_SOURCE_DIR}/reliability/mutate.py --check)

if(TARGET example_readme)
  set(run ${CMAKE_CURRENT_BINARY_DIR}/example.vex)
  add_test(NAME examples.record_run COMMAND example_record_run ${run})
  set_tests_properties(examples.record_run PROPERTIES FIXTURES_SETUP example_run)

  add_test(NAME examples.readme COMMAND example_readme ${run})
  add_test(NAME examples.read_frame COMMAND example_read_frame ${run} 2)
  add_test(NAME examples.own_host COMMAND example_own_host ${run})
  set_tests_properties(examples.readme PROPERTIES FIXTURES_REQUIRED example_run
                       PASS_REGULAR_EXPRESSION "frame 0: 101\nframe 1: 201\nframe 2: 301\n$")
  set_tests_properties(examples.read_frame PROPERTIES FIXTURES_REQUIRED example_run
                       PASS_REGULAR_EXPRESSION "^301\t302.*\t396\n$")
  set_tests_properties(examples.own_host PROPERTIES FIXTURES_REQUIRED example_run
                       PASS_REGULAR_EXPRESSION "3 records, status DONE\n.message. The Acquisition")

  if(TARGET example_analyse_with_lab)
    add_test(NAME examples.analyse_with_lab COMMAND example_analyse_with_lab ${run})
    set_tests_properties(examples.analyse_with_lab PROPERTIES FIXTURES_REQUIRED example_run
      PASS_REGULAR_EXPRESSION "vex did not record its readings")
  endif()
  if(TARGET example_read_with_lab)
    add_test(NAME examples.read_with_lab COMMAND example_read_with_lab ${run} 1)
    set_tests_properties(examples.read_with_lab PROPERTIES FIXTURES_REQUIRED example_run
      PASS_REGULAR_EXPRESSION "3 frames\nframe 0: stored 101\nframe 1: stored 201\nframe 2: stored 301\n$")
  endif()

  add_test(NAME examples.walk_study
           COMMAND example_walk_study ${CMAKE_CURRENT_BINARY_DIR}/example_study.vex ${run})
  set_tests_properties(examples.walk_study PROPERTIES FIXTURES_REQUIRED example_run
                       PASS_REGULAR_EXPRESSION "^example: top 301, Ct 2.5\n$")

  add_test(NAME examples.read_frame_that_is_not_there COMMAND example_read_frame ${run} 3)
  set_tests_properties(examples.read_frame_that_is_not_there PROPERTIES
                       FIXTURES_REQUIRED example_run PASS_REGULAR_EXPRESSION "has 3 frames")
endif()
