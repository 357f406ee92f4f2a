# Squeezes the scripts of the phone page, given as files, into one: without comments and spaces, with short names for
# the page's own variables and functions. A name is left as it is wherever it may be a property: after a dot, before a
# colon, inside braces on its own, or as a method. What this relies on: every statement ends in a semicolon, no empty
# statement ends a block, no variable has the name of something of the browser's that the scripts also use, and there
# are no template literals (refused, like an escape outside of texts and patterns).
{ read_line($0) }
END {
  if (failed) exit 1
  find_names()
  shorten()
  write()
}

function read_line(line,    pattern) {
  while (line != "") {
    if (match(line, /^[ \t]+/) || match(line, /^\/\/.*/)) { line = substr(line, RLENGTH + 1); continue }
    if (line ~ /^[`\\]/) { print "cannot be squeezed: " $0 > "/dev/stderr"; exit failed = 1 }
    if (!(match(line, /^'([^'\\]|\\.)*'/) || pattern_starts() && match(line, /^\/([^\/\\]|\\.)+\/[a-z]*/) ||
          match(line, /^[A-Za-z_$][A-Za-z0-9_$]*/) || match(line, /^[0-9][0-9A-Za-z.]*/) || match(line, /^=>/)))
      RLENGTH = 1
    token[++count] = substr(line, 1, RLENGTH)
    line = substr(line, RLENGTH + 1)
  }
}

# After a value a slash divides; anywhere else it begins a regular expression.
function pattern_starts() { return token[count] !~ /[A-Za-z0-9_$)\]\047]$/ || token[count] == "return" }

function is_name(text) { return text ~ /^[A-Za-z_$]/ }

function find_names(    i, depth, opener, before, after) {
  for (i = 1; i <= count; i++) {
    if (token[i] ~ /^[({[]$/) opener[++depth] = token[i]
    else if (token[i] ~ /^[)}\]]$/) depth--
    else if (token[i] == "=>") arguments_before(i)
    if (!is_name(token[i])) continue
    before = token[i - 1]
    after = token[i + 1]
    taken[token[i]] = 1
    if (property(i)) continue
    uses[token[i]]++
    if (before ~ /^(const|let|function)$/) own[token[i]] = 1
    if (before == "function") arguments_before(closing(i + 1) + 1)
    if (after == ":" || before == "get" || opener[depth] == "{" && before ~ /^[{,]$/ && after ~ /^[,}(=]$/)
      kept[token[i]] = 1
  }
}

function property(i) { return token[i - 1] == "." && token[i - 2] != "." }

function closing(i,    depth) {
  do depth += (token[i] == "(") - (token[i] == ")")
  while (depth && ++i <= count)
  return i
}

# The names of the arguments that end before `i`: one alone, or those in parentheses.
function arguments_before(i,    depth) {
  if (is_name(token[--i])) own[token[i]] = 1
  if (token[i] != ")") return
  do {
    depth += (token[i] == ")") - (token[i] == "(")
    if (depth == 1 && is_name(token[i]) && token[i - 1] ~ /^[(,]$/) own[token[i]] = 1
    i--
  } while (depth)
}

# The most used name gets the shortest free one.
function shorten(    name, best, next_short) {
  for (;;) {
    best = ""
    for (name in own)
      if (length(name) > 2 && !(name in kept) && !(name in short) &&
          (best == "" || uses[name] * length(name) > uses[best] * length(best) ||
           uses[name] * length(name) == uses[best] * length(best) && name < best)) best = name
    if (best == "") return
    do next_short = spelled(serial++)
    while (next_short in taken)
    short[best] = next_short
  }
}

function spelled(n,    letters) {
  letters = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ"
  return (n < 52 ? "" : substr(letters, int(n / 52), 1)) substr(letters, n % 52 + 1, 1)
}

function write(    i, out, text) {
  for (i = 1; i <= count; i++) {
    text = token[i]
    if (text == ";" && token[i + 1] == "}" || text == "(" && alone(i) || text == ")" && alone(i - 2)) continue
    if (text == "const") text = "let"
    else if (text in short && !property(i)) text = short[text]
    if (out ~ /[A-Za-z0-9_$]$/ && text ~ /^[A-Za-z0-9_$]/ || out ~ /[+]$/ && text == "+" && token[i - 1] != "+") printf " "
    printf "%s", text
    out = text
  }
  print ""
}

# The parenthesis at `i` holds nothing but the one argument of an arrow function.
function alone(i) { return token[i] == "(" && is_name(token[i + 1]) && token[i + 2] == ")" && token[i + 3] == "=>" && !is_name(token[i - 1]) }
