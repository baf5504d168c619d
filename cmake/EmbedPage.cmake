# cmake -DOUT=FILE.cpp -DPAGE=FOLDER -DCHARTS=FOLDER -DSCRIPTS=a.js,b.js -P EmbedPage.cmake
# writes the parts of the report page to FILE.cpp, as C++ strings.

function(part name)  # FILE...
  set(text "")
  foreach(file ${ARGN})
    file(READ ${file} content)
    if(content MATCHES "\\)EMBED\"")
      message(FATAL_ERROR "${file} holds the end of the text that it is written into")
    endif()
    string(APPEND text "${content}\n")
  endforeach()
  set(source "${source}const std::string_view ${name} = R\"EMBED(${text})EMBED\";\n\n" PARENT_SCOPE)
endfunction()

string(REPLACE "," ";" scripts "${SCRIPTS}")
list(TRANSFORM scripts PREPEND ${PAGE}/)
set(source "#include \"lab/picture/PageParts.h\"\n\nnamespace vex2::lab::page {\n\n")
part(kHtml ${PAGE}/page.html)
part(kIcon ${PAGE}/icon.svg)
part(kStyle ${CHARTS}/uPlot.min.css ${PAGE}/page.css)
part(kScripts ${CHARTS}/uPlot.iife.min.js ${scripts})
string(APPEND source "}  // namespace vex2::lab::page\n")
file(WRITE ${OUT} "${source}")
