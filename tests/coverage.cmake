# The target coverage runs the tests on a second build of vex2/ that counts the lines and branches
# that run, prints those that no test reaches, and fails below 95 %. The tests are the objects of the
# ordinary test programs. The command and lab/ are left out: their tests kill them and make their
# writes fail, which leaves incomplete counts.
find_program(VEX2_GCOVR gcovr REQUIRED)
set(vex2 ${PROJECT_SOURCE_DIR}/vex2)

file(GLOB framework_sources CONFIGURE_DEPENDS ${vex2}/framework/*.cpp)
file(GLOB document_sources CONFIGURE_DEPENDS ${vex2}/*/*.cpp)
list(REMOVE_ITEM document_sources ${framework_sources})
foreach(part framework document)
  vex2_batches(batches counted_${part} 10 ${${part}_sources})
  add_library(counted_${part}_objects OBJECT EXCLUDE_FROM_ALL ${batches})
  target_link_libraries(counted_${part}_objects PRIVATE vex2_flags)
  target_include_directories(counted_${part}_objects PRIVATE ${PROJECT_SOURCE_DIR})
  target_compile_definitions(counted_${part}_objects PRIVATE _FILE_OFFSET_BITS=64)
  # Tests fork recorders, so several processes merge their counts into the same files.
  target_compile_options(counted_${part}_objects PRIVATE
                         -O0 -g1 --coverage -fprofile-update=atomic)
endforeach()

# If several objects contain the same inline function, the linker uses the first, so the objects
# that count are linked before those of the tests. The tests of the framework register their own
# modules and must not find the module of the documents, which is linked with the objects that need
# it.
set(programs "")
foreach(folder ${counted_folders})
  set(objects $<TARGET_OBJECTS:counted_framework_objects>)
  if(NOT folder STREQUAL framework)
    list(APPEND objects $<TARGET_OBJECTS:counted_document_objects>)
  endif()
  add_executable(counted_${folder} EXCLUDE_FROM_ALL ${objects} $<TARGET_OBJECTS:test_${folder}>)
  target_link_libraries(counted_${folder} PRIVATE vex2_test_support GTest::gmock_main
                        ${CMAKE_DL_LIBS})
  target_link_options(counted_${folder} PRIVATE --coverage)
  set_target_properties(counted_${folder} PROPERTIES LINKER_LANGUAGE CXX)
  list(APPEND programs counted_${folder})
endforeach()

# Code that reads documents and commits to them: its branches must be covered as well as its lines,
# except the branches that exceptions take.
set(parts Blocks Files FrameFiles Frames Header)
list(TRANSFORM parts PREPEND "manager/Vex2FileManager")
list(TRANSFORM parts APPEND ".cpp")
set(branches "")
foreach(part format/ storage/ container/ run/ setup/ study/ framework/CFile framework/FileSystem
             manager/Vex2HeaderData ${parts})
  list(APPEND branches --filter ${vex2}/${part})
endforeach()

# Tests that measure times are left out, because counting code without optimisation takes other
# times.
set(timed *.TakesTimeInProportionToItsSize*:LongRun.TakesTheSameTimeForEachFrame)
set(objects ${CMAKE_CURRENT_BINARY_DIR}/CMakeFiles)
set(counted ${PROJECT_BINARY_DIR}/coverage.json)
set(gcovr ${VEX2_GCOVR} --root ${PROJECT_SOURCE_DIR} --sort-percentage --add-tracefile ${counted})
add_custom_target(coverage
  COMMAND find ${objects} -name "*.gcda" -delete
  COMMAND printf "%s\\n" ${programs} | env ${no_settings}
          xargs -P 2 -I "{}" timeout 600 "./{}" --gtest_brief=1 --gtest_filter=-${timed}
  COMMAND ${VEX2_GCOVR} --root ${PROJECT_SOURCE_DIR} --filter ${vex2}/ --json ${counted} -j 2
          --exclude-unreachable-branches --exclude-throw-branches ${objects}
  COMMAND ${gcovr} --fail-under-line 95
  COMMAND ${gcovr} ${branches} --branches --fail-under-branch 95
  DEPENDS ${programs} WORKING_DIRECTORY ${CMAKE_CURRENT_BINARY_DIR} USES_TERMINAL VERBATIM)
