#!/usr/bin/env bash
# The velmor tool as a shell user meets it: exact file names, standard input, exit codes, write
# errors, system reasons, configuration edits in place.
#   bash tests/tool/velmor_e2e.sh [VELMOR]     (default: the velmor on PATH)
set -u
tool=$(realpath "${1:-$(command -v velmor)}")
export PATH="$(dirname "$tool"):$PATH" LC_ALL=C
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work" || exit 1
chmod 755 "$work"
failures=0

# expect STATUS STDOUT STDERR SCRIPT: runs SCRIPT in bash; the status and both outputs must be
# exactly as given (an expected output ending in * is a prefix).
expect() {
  bash -c "$4" >"$work/.out" 2>"$work/.err"
  local status=$? got_out got_err
  got_out=$(cat "$work/.out"; echo .) got_err=$(cat "$work/.err"; echo .)
  if [ "$status" != "$1" ] || ! same "$got_out" "$2." || ! same "$got_err" "$3."; then
    printf 'FAILED: %s\n  status %s (want %s)\n  stdout: %q\n  stderr: %q\n' "$4" "$status" \
      "$1" "${got_out%.}" "${got_err%.}"
    failures=$((failures + 1))
  fi
}
same() { if [[ $2 == *'*.' ]]; then [[ $1 == "${2%'*.'}"* ]]; else [ "$1" = "$2" ]; fi; }

abc=900150983cd24fb0d6963f7d28e17f72
printf abc >abc
printf 'quoted' >"'q'" && printf 'plain' >q
mkdir a d && printf 'slashed' >a/b && printf 'x' >'a\b'
mkdir hostile
for name in "'q'" '"dq"' 'back\slash' 'co:lon' $'new\nline' $'bad\xff\xfeutf8' ' lead' '-dash' \
  '*star' 'ü'; do
  printf '%s' "$name" >"hostile/$name"
done

# Exact names, standard input, md5sum's escapes and its -c.
expect 0 "$(md5sum -- "'q'" 'a\b')"$'\n' '' "velmor md5 \"'q'\" 'a\\b'"
expect 0 "$abc  -"$'\n' '' 'printf abc | velmor md5'
expect 0 "$abc  -"$'\n'"$abc  abc"$'\n' '' 'printf abc | velmor md5 - abc'
expect 0 $'cbf43926  -\n' '' 'printf 123456789 | velmor crc32'
expect 0 $'\\9dd4e461268c8034f5c8564e155c67a6  n\\nl\\\\c\\rr\n' '' \
  "printf x >\$'n\\nl\\\\c\\rr' && velmor md5 \$'n\\nl\\\\c\\rr'"
expect 0 "$(cd hostile && md5sum -- *)"$'\n' '' 'cd hostile && velmor md5 -- *'
expect 0 '' '' 'cd hostile && velmor md5 -- * | md5sum -c --quiet'
expect 0 "$(cd hostile && md5sum -- * | md5sum -c)"$'\n' '' \
  'cd hostile && md5sum -- * | velmor md5 --check'
expect 1 $'abc: OK\nabc: FAILED\nnofile: FAILED open or read\n' \
  $'velmor md5: nofile: No such file or directory\nvelmor md5: WARNING: 1 line is improperly formatted\nvelmor md5: WARNING: 1 listed file could not be read\nvelmor md5: WARNING: 1 computed checksum did NOT match\n' \
  "printf '$abc  abc\nbad\n${abc/9/0} *abc\n$abc  nofile\n' | velmor md5 -c"
expect 1 '' $'velmor md5: abc: no properly formatted checksum lines found\n' 'velmor md5 -c abc'

# Reasons from the system, unreadable files, usage errors on standard error.
expect 1 "$abc  abc"$'\n' $'velmor md5: nofile: No such file or directory\nvelmor md5: d: Is a directory\n' \
  'velmor md5 abc nofile d'
expect 1 '' $'velmor crc32: d: Is a directory\n' 'velmor crc32 d'
printf 'secret' >secret && chmod 000 secret
# Root reads anything: the unreadable file is read by an ordinary user.
as_user=''
if [ "$(id -u)" = 0 ]; then
  as_user=$(command -v setpriv) && as_user+=' --reuid=65534 --regid=65534 --clear-groups'
fi
if [ "$(id -u)" = 0 ] && [ -z "$as_user" ]; then
  echo 'velmor_e2e: skipped the unreadable file (root without setpriv)'
else
  expect 1 '' $'velmor crc32: secret: Permission denied\n' "$as_user velmor crc32 secret"
fi
expect 2 '' 'usage: velmor COMMAND [ARGS...]*' 'velmor'
expect 2 '' $'velmor md5: unknown option \'-x\' (see velmor md5 --help)\n' 'velmor md5 -x'

# Every command checks its output.
for script in 'velmor md5 abc' 'velmor crc32 abc' 'velmor text detect abc' \
  'velmor text convert abc --to utf16' 'velmor md5 --help' 'velmor path x'; do
  command=$(cut -d' ' -f2 <<<"$script")
  expect 1 '' "velmor $command: write error: No space left on device"$'\n' "$script >/dev/full"
done

# File names the library would read as other files are refused, never mapped.
printf 'keep' >important
expect 0 '' '' "velmor text convert abc --to utf8 -o \"'important'\" && cmp -s abc \"'important'\" && cmp -s important <(printf keep)"
expect 0 '' '' "velmor text convert abc --to utf8 -o \$'o\\\\u\\nt' && cmp -s abc \$'o\\\\u\\nt'"
refused="the library would take this name for another file (quotes, spaces at the ends, '\\', ':' or bytes that are not UTF-8); not used"
expect 1 '' "velmor config: 'n.xml': $refused"$'\n' "velmor config \"'n.xml'\" set k v; s=\$?; [ ! -e n.xml ] && exit \$s"
expect 1 '' "velmor config: x:y.xml: $refused"$'\n' 'velmor config x:y.xml set k v; s=$?; [ ! -e x: ] && exit $s'

# config set changes the one element and keeps every other byte.
cat >c.xml <<'EOF'
<?xml version="1.0" encoding="UTF-8"?>
<settings>
  <!-- look & feel -->
  <theme type="color">#203040</theme>
  <general>
    <width type="int">10</width>
    <names type="string_list">
      <item>a &amp; b</item>
    </names>
  </general>
</settings>
EOF
cp c.xml before.xml
expect 0 '' '' 'velmor config c.xml set General.Width 11 --type=int && sed s/10/11/ before.xml | cmp -s - c.xml'
unknown=$'velmor config: theme: unknown type "color", ignored\n'
expect 0 $'11\n' "$unknown" 'velmor config c.xml get general.width'
expect 0 $'["a & b"]\n' "$unknown" \
  'velmor config c.xml set general.zoom.level 1.5 --type double && velmor config c.xml list | cut -f3 | grep "&"'
expect 0 '' '' "sed 's|^  </general>|    <zoom>\\n      <level type=\"double\">1.5</level>\\n    </zoom>\\n&|; s/10/11/' before.xml | cmp - c.xml"
cp c.xml before.xml
expect 2 '' $'velmor config: unknown type \'Int\'; known types: bool, int, long, unsigned long, unsigned short, unsigned int, float, double, string, path_t (see velmor config --help)\n' \
  'velmor config c.xml set general.width 12 --type Int'
expect 2 '' $'velmor config: VALUE \'x\' is not of type \'int\' (see velmor config --help)\n' \
  'velmor config c.xml set general.width x --type int'
expect 1 '' $'velmor config: KEY and VALUE must be valid UTF-8; file not changed\n' \
  "velmor config c.xml set general.width \$'\\xff'"
expect 1 '' $'velmor env: NAME and VALUE must be valid UTF-8; nothing set\n' "velmor env X \$'\\xff'"
expect 1 '' $'velmor config: VALUE holds characters XML cannot keep, or KEY is nested too deep; file not changed\n' \
  "velmor config c.xml set general.width \$'a\\x01'"
expect 1 '' $'velmor config: KEY \'general.width.x\': level \'width\' holds a value; file not changed\n' \
  'velmor config c.xml set general.width.x 1'
expect 0 '' '' 'cmp before.xml c.xml'
printf '<broken' >bad.xml
expect 1 '' $'velmor config: bad.xml: cannot be read (no access, not well-formed XML, or being written); not changed\n' \
  'velmor config bad.xml set a 1; s=$?; cmp -s bad.xml <(printf "<broken") && exit $s'
expect 1 '' $'velmor config: nofile.xml: No such file or directory\n' 'velmor config nofile.xml list'

# watch prints the keys another process changes and ends with status 0 on SIGINT.
expect 0 $'a\tint\t5\nb\t(removed)\n' '' \
  'velmor config w.xml set b 1 >/dev/null && { velmor config w.xml watch & } &&
   sleep 1 && velmor config w.xml set a 5 --type int && sleep 0.3 &&
   printf "<root><a type=\"int\">5</a></root>" >w.tmp && mv w.tmp w.xml && sleep 0.3 &&
   kill -INT %1 && wait %1'

# tour writes only into the user's configuration folder.
mkdir tour && cd tour || exit 1
expect 1 'velmor tour: what a desktop tool does at start-up*' \
  $'velmor tour: no per-user configuration folder is available\n' \
  'HOME=/proc/version XDG_CONFIG_HOME= velmor tour; s=$?; [ -z "$(ls -A)" ] && exit $s'
mkdir -p home/.config/Norvane/velmor-tour && printf '<x' >home/.config/Norvane/velmor-tour/settings.xml
expect 1 'velmor tour: what a desktop tool does at start-up*' \
  "velmor tour: '$PWD/home/.config/Norvane/velmor-tour/settings.xml' cannot be read (not well-formed, or being written); left as it is"$'\n' \
  'HOME=$PWD/home XDG_CONFIG_HOME= velmor tour; s=$?; cmp -s home/.config/Norvane/velmor-tour/settings.xml <(printf "<x") && exit $s'

# dirs creates nothing in the working directory when the per-user folder is unavailable.
cd "$work" && mkdir dirs && cd dirs || exit 1
expect 1 'executable*' '' \
  'HOME=/proc/version XDG_CONFIG_HOME=/proc/version/x velmor dirs; s=$?; [ -z "$(ls -A)" ] && exit $s'
expect 2 '' $'velmor dirs: \'/abs\' cannot name a file in a folder\n' 'velmor dirs /abs'

echo "velmor_e2e: $failures failed"
[ "$failures" = 0 ]
