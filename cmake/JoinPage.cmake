# Joins the parts of the phone page into the one file that is served:
#   cmake -DPAGE=<folder of the parts> -DOUT=<file> -P JoinPage.cmake
# page.html names the parts in lines "@include <part>"; scripts share one line and are squeezed together. What only a
# reader of the sources needs is left out: indentation, comments, quotes around plain attributes, spaces.
cmake_minimum_required(VERSION 3.25)
set(most 59900) # bytes; the values of the placeholders come on top

function(read_scripts names result)
  separate_arguments(names)
  execute_process(COMMAND awk -f ${CMAKE_CURRENT_LIST_DIR}/squeeze.awk ${names} WORKING_DIRECTORY ${PAGE}
    OUTPUT_VARIABLE text COMMAND_ERROR_IS_FATAL ANY)
  set(${result} "${text}" PARENT_SCOPE)
endfunction()

function(read_part name result)
  file(READ ${PAGE}/${name} text)
  string(REGEX REPLACE "\n[ \t\n]+" "\n" text "\n${text}")
  string(REGEX REPLACE "^\n" "" text "${text}")
  if(name MATCHES "\\.css$")
    string(REGEX REPLACE "/\\*[^\n]*\\*/\n" "" text "${text}")
    string(REGEX REPLACE "([{};:,]) +" "\\1" text "${text}")
    string(REGEX REPLACE " *([{}])" "\\1" text "${text}")
    string(REGEX REPLACE "([{};,])\n" "\\1" text "${text}")
    string(REPLACE ";}" "}" text "${text}")
  else()
    string(REGEX REPLACE "=\"([A-Za-z0-9#.-]+)\"([ >])" "=\\1\\2" text "${text}")
  endif()
  set(${result} "${text}" PARENT_SCOPE)
endfunction()

read_part(page.html page)
string(REGEX MATCHALL "@include [^\n]+" includes "${page}")
foreach(line IN LISTS includes)
  string(REPLACE "@include " "" name "${line}")
  if(name MATCHES "\\.js$")
    read_scripts("${name}" part)
  else()
    read_part(${name} part)
  endif()
  string(REPLACE "${line}\n" "${part}" page "${page}")
endforeach()

string(LENGTH "${page}" size)
file(WRITE ${OUT} "${page}")
if(size GREATER most)
  file(REMOVE ${OUT})
  message(FATAL_ERROR "the phone page has ${size} bytes, ${most} are allowed")
endif()
