# Joins the parts of the phone page into the one file that is served:
#   cmake -DPAGE=<folder of the parts> -DOUT=<file> -P JoinPage.cmake
# page.html names the parts, each in a line "@include <part>". What only a reader of the sources needs is left out:
# indentation, comments (whole lines, and in scripts those after two spaces), line ends after ; { and comma, and the
# spaces of a style sheet. A script with a template literal is refused, since its lines and spaces may matter.
cmake_minimum_required(VERSION 3.25)
set(most 59999) # bytes, the placeholders' values not counted

function(read_part name result)
  file(READ ${PAGE}/${name} text)
  string(PREPEND text "\n")
  string(REGEX REPLACE "\n[ \t\n]+" "\n" text "${text}")
  if(name MATCHES "\\.js$")
    string(REGEX REPLACE "\n//[^\n]*" "" text "${text}")
    string(REGEX REPLACE "  // [^\n]*" "" text "${text}")
    if(text MATCHES "`")
      message(FATAL_ERROR "${name}: no template literals in the page's scripts")
    endif()
    string(REGEX REPLACE "([;{,])\n" "\\1" text "${text}")
  elseif(name MATCHES "\\.css$")
    string(REGEX REPLACE "\n/\\*[^\n]*\\*/" "" text "${text}")
    string(REGEX REPLACE "([{};:,]) +" "\\1" text "${text}")
    string(REGEX REPLACE " *([{}])" "\\1" text "${text}")
    string(REGEX REPLACE "([{};,])\n" "\\1" text "${text}")
    string(REPLACE ";}" "}" text "${text}")
  endif()
  string(REGEX REPLACE "^\n+" "" text "${text}")
  set(${result} "${text}" PARENT_SCOPE)
endfunction()

read_part(page.html page)
string(REGEX MATCHALL "@include [^\n]+" includes "${page}")
foreach(line IN LISTS includes)
  string(REPLACE "@include " "" name "${line}")
  read_part(${name} part)
  string(REPLACE "${line}\n" "${part}" page "${page}")
endforeach()

string(LENGTH "${page}" size)
if(size GREATER most)
  message(FATAL_ERROR "the phone page has ${size} bytes, ${most} are allowed")
endif()
file(WRITE ${OUT} "${page}")
