# Joins the parts of the phone page into the one file that is served:
#   cmake -DPAGE=<folder of the parts> -DOUT=<file> -DESBUILD=<program> -P JoinPage.cmake
# page.html names the parts in lines "@include <part>"; the scripts of one line become one script. esbuild removes
# comments and white space from scripts and styles and keeps every name. "__BASE64:<file>__" stands for a file's bytes.
cmake_minimum_required(VERSION 3.25)
set(most 30000) # bytes, compressed as the page is sent

# Runs esbuild over the named parts, joined.
function(read_code loader names result)
  set(code "")
  separate_arguments(names)
  foreach(name IN LISTS names)
    file(READ ${PAGE}/${name} text)
    string(APPEND code "${text}\n")
  endforeach()
  file(WRITE ${OUT}.${loader} "${code}")
  execute_process(COMMAND ${ESBUILD} --loader=${loader} --minify-whitespace --charset=utf8 --log-level=warning
    INPUT_FILE ${OUT}.${loader} OUTPUT_VARIABLE text COMMAND_ERROR_IS_FATAL ANY)
  file(REMOVE ${OUT}.${loader})
  set(${result} "${text}" PARENT_SCOPE)
endfunction()

function(read_markup name result)
  file(READ ${PAGE}/${name} text)
  string(REGEX REPLACE "\n[ \t\n]+" "\n" text "\n${text}")
  string(REGEX REPLACE "^\n" "" text "${text}")
  set(${result} "${text}" PARENT_SCOPE)
endfunction()

read_markup(page.html page)
string(REGEX MATCHALL "@include [^\n]+" includes "${page}")
foreach(line IN LISTS includes)
  string(REPLACE "@include " "" name "${line}")
  if(name MATCHES "\\.js$")
    read_code(js "${name}" part)
  elseif(name MATCHES "\\.css$")
    read_code(css "${name}" part)
  else()
    read_markup(${name} part)
  endif()
  string(REPLACE "${line}\n" "${part}" page "${page}")
endforeach()

# Files that are part of a script.
string(REGEX MATCHALL "__BASE64:[^_]+__" embedded "${page}")
foreach(mark IN LISTS embedded)
  string(REGEX REPLACE "^__BASE64:(.*)__$" "\\1" name "${mark}")
  execute_process(COMMAND base64 -w0 ${PAGE}/${name} OUTPUT_VARIABLE text COMMAND_ERROR_IS_FATAL ANY)
  string(REPLACE "${mark}" "${text}" page "${page}")
endforeach()

file(WRITE ${OUT} "${page}")
execute_process(COMMAND gzip -6 -c ${OUT} COMMAND wc -c OUTPUT_VARIABLE size COMMAND_ERROR_IS_FATAL ANY)
string(STRIP "${size}" size)
if(size GREATER most)
  file(REMOVE ${OUT})
  message(FATAL_ERROR "the phone page has ${size} compressed bytes, ${most} are allowed")
endif()
