#!/usr/bin/env bash
# tavgrep_test.sh COMMAND...: runs tavgrep, by the command given, on small texts. Where its language and Perl's agree,
# grep -P says what is right; elsewhere the expectation is written out.
set -uo pipefail
export LC_ALL=C

tavgrep=("$@")
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
cd "$scratch" || exit 1
checks=0 failures=0

verdict() {
  local name=$1
  checks=$((checks + 1))
  if cmp -s expected actual; then return; fi
  failures=$((failures + 1))
  echo "FAILED: $name"
  diff -a expected actual | cut -c 1-120 | head -n 10
}

# expect NAME STATUS OUTPUT ARGUMENT...: what is printed on the standard output, and the exit status behind it.
expect() {
  local name=$1 status=$2 output=$3
  shift 3
  { printf '%b' "$output"; echo "status $status"; } >expected
  { "${tavgrep[@]}" "$@" 2>errors; echo "status $?"; } >actual
  verdict "$name"
}

# like_grep ARGUMENT...: the same output and exit status as grep -P's with the same arguments.
like_grep() {
  { grep -aP "$@"; echo "status $?"; } >expected
  { "${tavgrep[@]}" "$@"; echo "status $?"; } >actual
  verdict "like grep: $*"
}

cat >fruit <<'END'
apple and apricot
Banana
cherry, cherries
the the end

  indented  words
date: 2026-11-20, later 2027-01-02
mail to alice.b@example.org or bob@example.com
END
printf 'no line feed at the end' >open
printf 'nul\0byte\nlast \xff\xfe\n' >binary

# Selection, numbering, counting, inversion.
for pattern in 'an' '^[a-z]+ ' 'e$' '\d{4}-\d\d-\d\d' '(\w+) \1' 'a(?=p)' '(?<=, )\w+' 'xyz' '' '^$' '.*' 'ch(erry|erries)' \
    '\bthe\b' '[^a-z]+$' '(a|b)+' 'a.*?r' '[[:upper:]]'; do
  like_grep "$pattern" fruit
  like_grep -n -v "$pattern" fruit
done
like_grep -i 'BANANA|APPLE' fruit
like_grep -c 'a' fruit
like_grep -vc 'a' fruit
like_grep -n 'a' fruit open
like_grep -c 'e' fruit open

# Each match of a line: later ones know what stands before them.
for pattern in '\w+' 'a' '\ba\w*' '^\w+' '(a)(\w)' 'a*' '\d+-(\d+)' '(?<=a)p' '(\w)\1' '\Bp'; do
  like_grep -o "$pattern" fruit
done
like_grep -on 'an|rr' fruit open

# Lines of any kind.
like_grep 'end$' open
like_grep 'end\b' open
like_grep 'byte' binary
like_grep -c '.' binary
printf 'x%.0s' $(seq 300000) >long
printf 'y\nshort\n' >>long
like_grep -c 'x$' long
like_grep -n 'xy$' long
like_grep 'short' long
awk 'BEGIN { for (i = 0; i < 60000; i++) print "line number", i }' >many
like_grep -c '7$' many
like_grep -n ' 5999[0-9]$' many
expect "crosses blocks: every line is seen" 0 '60000\n' -c '^line number \d+$' many

# The standard input, and files that cannot be read.
expect "reads the standard input" 0 'cherry, cherries\n' cherry <fruit
expect "- is the standard input" 0 '(standard input):Banana\nfruit:Banana\n' Ban - fruit <fruit
expect "a missing file is an error, the others are searched" 2 'fruit:Banana\n' Banana missing fruit
expect "no match" 1 '' zebra fruit
expect "-- ends the options" 0 'a -n b\n' -- -n - <<<'a -n b'

# Options of the pattern.
expect "-x ignores white space in the pattern" 0 'Banana\n' -x 'B a n # a comment' fruit
expect "-s and -m are accepted" 0 'Banana\n' -sm '^Banana$' fruit
expect "options can be joined" 0 '2:Banana\n' -in '^banana$' fruit
expect "an unknown option is an error" 2 '' -q a fruit
expect "no pattern is an error" 2 '' -i

# Groups and colours.
expect "--groups lists the groups of a match" 0 'Banana\n  0 at 0: Ba\n  1 at 0: B\n  2 unset\n' --groups '(B)(x)?a' fruit
expect "--groups lists every match" 0 'aa\n  0 at 0: a\n  0 at 1: a\n' --groups a <<<aa
expect "--groups with a back-reference" 0 'xaax\n  0 at 1: aa\n  1 at 1: a\n' --groups '(a)\1' <<<xaax
expect "-o with --groups" 0 'an\n  0 at 1: an\n  1 at 2: n\nan\n  0 at 3: an\n  1 at 4: n\n' -o --groups 'a(n)' <<<Banana
expect "--color=always highlights every match" 0 'B\033[1;31man\033[m\033[1;31man\033[ma\n' --color=always an <<<Banana
expect "--color=auto is plain in a pipe" 0 'Banana\n' --color=auto anan fruit
expect "--color takes only known words" 2 '' --color=red an fruit

# Several patterns: grep takes them in its extended language only.
like_extended_grep() {
  { grep -aE "$@"; echo "status $?"; } >expected
  { "${tavgrep[@]}" "$@"; echo "status $?"; } >actual
  verdict "like grep -E: $*"
}
like_extended_grep -e an -e 'the' fruit
like_extended_grep -ean -ethe fruit
like_extended_grep -n -v -e an -e the -e '^$' fruit
like_extended_grep -c -e '^$' -e cherry fruit
like_extended_grep -n -e '^$' -e Banana fruit
like_extended_grep -o -e the -e 'an' fruit
like_extended_grep -ie BANANA -e 'DATE' fruit
expect "-e leaves the operands to the files" 0 'fruit:Banana\nopen:no line feed at the end\n' -e anan -e 'feed' fruit open
expect "a pattern may begin with a dash" 0 'date: 2026-11-20, later 2027-01-02\n' -e '-11-' fruit
expect "-e alone lacks its pattern" 2 '' -e
expect "--ids shows which patterns match" 0 '1:apple and apricot\n1,3:Banana\n2:the the end\n' --ids -e an -e '^the' -e 'B' fruit
expect "--ids stands behind the line number" 0 '5:2:\n' -n --ids -e zebra -e '^$' fruit
expect "--ids with one pattern" 0 '1:Banana\n' --ids anan fruit
expect "--ids of an inverted selection are empty" 0 ':b\n' -v --ids -e a -e c <<<$'a\nb\nc'
expect "the leftmost of overlapping matches counts" 0 'anan\n' -o -e nana -e anan <<<Banana
expect "of matches at one place the longest counts" 0 'anan\n' -o -e an -e anan <<<Banana
expect "--groups of each pattern" 0 'ab\n  0 at 0: a\n  0 at 1: b\n  1 at 1: b\n' --groups -e a -e '(b)' <<<ab
expect "matches of several patterns are highlighted" 0 '\033[1;31ma\033[mx\033[1;31mb\033[m\n' --color=always -e b -e a <<<axb

# Replacement.
expect "-r prints the whole text with every match replaced" 0 'B[an][an]a\nx\n' -r '[$&]' an <<<$'Banana\nx'
expect "-r with groups" 0 'date: 20.11.2026, later 02.01.2027\n' -r '$3.$2.$1' '(\d+)-(\d+)-(\d+)' <<<'date: 2026-11-20, later 2027-01-02'
expect "-r with an empty template removes" 0 'Baaa\n' -r '' n <<<Banana
expect "-r with the options of the pattern" 0 '1:x.n.n.\n' -n -i -r . A <<<xanana
expect "-r without a match" 1 'Banana\n' -r x z <<<Banana
expect "-r on an empty line" 0 '<>\na<>\n' -r '<$&>' '$' <<<$'\na'
expect "-r multiplies digits by eleven" 0 'm!\n' -r '$12!' '(a)(b)(c)(d)(e)(f)(g)(h)(i)(j)(k)(l)(m)' <<<abcdefghijklm
expect "-r with many and long replacements" 0 "$(printf '0123456789%.0s' $(seq 3000))\\n" -r '0123456789' x <<<"$(printf 'x%.0s' $(seq 3000))"
expect "-r with a bad template" 2 '' -r '$x' an fruit
expect "-r takes one pattern" 2 '' -r x -e a -e b fruit
expect "-r does not select lines" 2 '' -o -r x a fruit

# A bad pattern: the status by name, and a caret under the offset.
error_of() {
  local name=$1 message=$2
  shift 2
  printf '%b' "$message" >expected
  "${tavgrep[@]}" "$@" 2>&1 <fruit | tr -d '\r' >actual
  verdict "$name"
}
error_of "the bad one of several patterns" 'tavgrep: tavStsPatternSyntax (-186) at offset 2 of the pattern\n  b(\n    ^\n' -e a -e 'b('
error_of "bad template" 'tavgrep: template $x: tavStsBadGroupReference\n' -r '$x' an
error_of "open group" 'tavgrep: tavStsPatternSyntax (-186) at offset 4 of the pattern\n  ab(c\n      ^\n' 'ab(c'
error_of "quantifier at the start" 'tavgrep: tavStsRepeatLimit (-187) at offset 0 of the pattern\n  *a\n  ^\n' '*a'
error_of "reversed range" 'tavgrep: tavStsBadClass (-184) at offset 4 of the pattern\n  a[z-b]\n      ^\n' 'a[z-b]'
expect "a bad pattern has status 2" 2 '' 'a(' fruit

expect "--version names the library" 0 'tavgrep with tavCH PX (mx) 8.2.3 (r48108)\n' --version

echo "$checks checks, $failures failed"
[ "$failures" -eq 0 ]
