# vex2_batches(OUT NAME SIZE SOURCES...) sets OUT to files that each include up to SIZE of the
# SOURCES of one folder, so that they are compiled as one: most of the time goes into headers and
# their templates. The names in unnamed namespaces of a folder must differ for this. A source that
# has compile options or definitions of its own, or is generated, stays alone. NAME must be unique in its folder.
function(vex2_batches out name size)
  set(alone "")
  set(together "")
  set(folders "")
  foreach(source ${ARGN})
    cmake_path(ABSOLUTE_PATH source)
    get_source_file_property(options ${source} COMPILE_OPTIONS)
    get_source_file_property(definitions ${source} COMPILE_DEFINITIONS)
    cmake_path(IS_PREFIX PROJECT_BINARY_DIR ${source} is_generated)
    if(options OR definitions OR is_generated)
      list(APPEND alone ${source})
      continue()
    endif()
    # A path from the root of the tree, so that a compiler cache serves every checkout.
    cmake_path(RELATIVE_PATH source BASE_DIRECTORY ${PROJECT_SOURCE_DIR})
    cmake_path(GET source PARENT_PATH folder)
    string(MAKE_C_IDENTIFIER ${folder} folder)
    list(APPEND folders ${folder})
    list(APPEND sources_${folder} ${source})
  endforeach()
  list(REMOVE_DUPLICATES folders)
  foreach(folder ${folders})
    set(batch 0)
    while(sources_${folder})
      list(SUBLIST sources_${folder} 0 ${size} part)
      list(REMOVE_ITEM sources_${folder} ${part})
      list(TRANSFORM part REPLACE "(.+)" "#include \"\\1\"\n")
      list(JOIN part "" content)
      set(file ${CMAKE_CURRENT_BINARY_DIR}/batches/${name}_${folder}_${batch}.cpp)
      file(CONFIGURE OUTPUT ${file} CONTENT "${content}")
      list(APPEND together ${file})
      math(EXPR batch "${batch} + 1")
    endwhile()
  endforeach()
  # Classes in the unnamed namespace of an included file are local, which is right in a batch.
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    set_source_files_properties(${together} PROPERTIES COMPILE_OPTIONS -Wno-subobject-linkage)
  endif()
  set(${out} ${together} ${alone} PARENT_SCOPE)
endfunction()

# vex2_add_objects(NAME SOURCES...) compiles SOURCES as part of the libraries.
function(vex2_add_objects name)
  if(VEX2_BATCHES)
    vex2_batches(batches ${name} 10 ${ARGN})
  else()
    set(batches ${ARGN})
  endif()
  add_library(${name} OBJECT ${batches})
  target_link_libraries(${name} PRIVATE vex2_flags)
  target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR})
  target_compile_definitions(${name} PRIVATE _FILE_OFFSET_BITS=64)
  set_target_properties(${name} PROPERTIES
    POSITION_INDEPENDENT_CODE ON CXX_VISIBILITY_PRESET hidden VISIBILITY_INLINES_HIDDEN ON)
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    # Calls within a library need no indirection, and a module can be unloaded completely.
    target_compile_options(${name} PRIVATE -fno-semantic-interposition -fno-gnu-unique)
  endif()
endfunction()

# vex2_add_library(NAME EXPORT_NAME SOURCES... [OBJECTS TARGET...] [DEPENDS BASE] [EXPORTS MAP])
# compiles SOURCES once, and makes two libraries from these objects and from those of each TARGET,
# which was made with vex2_add_objects: NAME (shared, vex2::EXPORT_NAME) and NAME_static
# (vex2::EXPORT_NAME_static). DEPENDS is the NAME of the library of the layer below. MAP is the
# version script of the shared library; the default is cmake/exports.map.
function(vex2_add_library name export_name)
  cmake_parse_arguments(arg "" "DEPENDS;EXPORTS" "SOURCES;OBJECTS" ${ARGN})
  if(NOT arg_SOURCES)  # a layer that has only headers so far
    set(arg_SOURCES ${CMAKE_CURRENT_BINARY_DIR}/${name}_empty.cpp)
    file(CONFIGURE OUTPUT ${arg_SOURCES} CONTENT "")
  endif()
  vex2_add_objects(${name}_objects ${arg_SOURCES})
  set(objects "")
  foreach(part ${name}_objects ${arg_OBJECTS})
    list(APPEND objects $<TARGET_OBJECTS:${part}>)
  endforeach()

  add_library(${name} SHARED ${objects})
  add_library(${name}_static STATIC ${objects})
  set(exports ${PROJECT_SOURCE_DIR}/cmake/exports.map)
  if(arg_EXPORTS)
    set(exports ${arg_EXPORTS})
  endif()
  target_link_options(${name} PRIVATE LINKER:--no-undefined LINKER:--version-script=${exports})
  set_target_properties(${name} PROPERTIES
    VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR}
    EXPORT_NAME ${export_name} LINK_DEPENDS ${exports} INSTALL_RPATH $ORIGIN LINKER_LANGUAGE CXX)
  set_target_properties(${name}_static PROPERTIES
    OUTPUT_NAME ${name} EXPORT_NAME ${export_name}_static LINKER_LANGUAGE CXX)

  foreach(suffix "" _static)
    set(target ${name}${suffix})
    add_library(vex2::${export_name}${suffix} ALIAS ${target})
    target_compile_features(${target} PUBLIC cxx_std_20)
    target_include_directories(${target} PUBLIC $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}>
                                                $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
    if(arg_DEPENDS)
      target_link_libraries(${target} PUBLIC ${arg_DEPENDS}${suffix})
    endif()
    if(NOT suffix AND arg_DEPENDS)
      # A host may find the classes by name only, and use no symbol of the library. Many linkers
      # would then drop the library.
      target_link_options(${target} INTERFACE LINKER:--no-as-needed)
    endif()
    if(suffix OR NOT arg_DEPENDS)
      target_link_libraries(${target} PUBLIC ${CMAKE_DL_LIBS})
    endif()
    install(TARGETS ${target} EXPORT vex2Targets)
  endforeach()
endfunction()

# vex2_install_headers(FOLDER [INTERNAL HEADER...]) installs every header of FOLDER (below vex2/)
# except those named INTERNAL, and adds the installed ones to the global property
# vex2_public_headers.
function(vex2_install_headers folder)
  cmake_parse_arguments(arg "" "" "INTERNAL" ${ARGN})
  file(GLOB headers CONFIGURE_DEPENDS RELATIVE ${CMAKE_CURRENT_SOURCE_DIR}/${folder}
       ${folder}/*.h)
  foreach(header ${headers})
    if(NOT header IN_LIST arg_INTERNAL)
      install(FILES ${folder}/${header} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/vex2/${folder})
      set_property(GLOBAL APPEND PROPERTY vex2_public_headers vex2/${folder}/${header})
    endif()
  endforeach()
endfunction()

# vex2_install_public_headers(HEADER...) installs headers, named relative to the current folder,
# under their path in the repository. It adds them to the global property vex2_public_headers.
function(vex2_install_public_headers)
  cmake_path(RELATIVE_PATH CMAKE_CURRENT_SOURCE_DIR BASE_DIRECTORY ${PROJECT_SOURCE_DIR}
             OUTPUT_VARIABLE here)
  foreach(header ${ARGN})
    cmake_path(GET header PARENT_PATH folder)
    install(FILES ${header} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/${here}/${folder})
    set_property(GLOBAL APPEND PROPERTY vex2_public_headers ${here}/${header})
    set_property(GLOBAL APPEND PROPERTY vex2_${here}_headers ${here}/${header})
  endforeach()
endfunction()

# vex2_check_headers(NAME HEADERS... LINK LIBRARY...) compiles each header by itself. HEADERS are
# paths relative to the root of the repository.
function(vex2_check_headers name)
  cmake_parse_arguments(arg "" "" "HEADERS;LINK" ${ARGN})
  set(sources "")
  foreach(header ${arg_HEADERS})
    string(MAKE_C_IDENTIFIER ${header} stem)
    set(source ${CMAKE_CURRENT_BINARY_DIR}/${name}/${stem}.cpp)
    file(CONFIGURE OUTPUT ${source} CONTENT "#include \"@header@\"\n" @ONLY)
    list(APPEND sources ${source})
  endforeach()
  if(sources)
    add_library(${name} OBJECT ${sources})
    target_link_libraries(${name} PRIVATE vex2_flags ${arg_LINK})
  endif()
endfunction()
