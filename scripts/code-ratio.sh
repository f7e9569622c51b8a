#!/bin/sh
# Non-blank, non-comment lines of code and of tests (tests/ + fuzz/) in a checkout.
# Usage: code-ratio.sh [DIR]   (default: current directory)
cd "${1:-.}"
cnt() { cat "$@" 2>/dev/null | sed -e 's://.*$::' | awk 'BEGIN{c=0} { line=$0; out=""; while(1){ if(c){ i=index(line,"*/"); if(!i){line="";break} line=substr(line,i+2); c=0 } else { i=index(line,"/*"); if(!i){out=out line; break} out=out substr(line,1,i-1); line=substr(line,i+2); c=1 } } if (out ~ /[^ \t]/) n++ } END{print n+0}'; }
files() { for d in "$@"; do [ -d "$d" ] && find "$d" -type f \( -name '*.cpp' -o -name '*.h' -o -name '*.c' -o -name '*.cc' \); done; }
code=$(cnt $(files src include modules cli tools bench examples))
tests=$(cnt $(files tests fuzz))
echo "code $code tests $tests ratio $(awk "BEGIN{printf \"%.2f\", $tests/$code}")"
