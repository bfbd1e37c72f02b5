#!/bin/bash
# Takes Quillmont away, for the user who runs this: ends the running program, removes its login
# item, its settings and its logs, and deletes the application that this script lies in.
#
# The program starts it as "/bin/bash <path>" and does not wait. Run with sudo it speaks for root
# alone. Each thing done is a line on the standard output, each that cannot be done one on the
# standard error, and then the status is 1. Runs on bash 3.2.
#
# Whatever is deleted has a name that is written in this file, and lies where the program itself
# would have put it. What else a user keeps beside it stays.
set -u
PATH=/usr/bin:/bin:/usr/sbin:/sbin # the program's own has its tools in front
LC_ALL=C
export PATH LC_ALL
unset CDPATH

# The program, and with it the reader of these lines, ends before this script does. Where the
# program was started by a service manager, what it leaves behind is asked to end too.
trap '' HUP INT PIPE QUIT TERM
exec </dev/null

readonly started_in=${PWD-}
readonly label=com.norwaldex.quillmont
readonly identifier=com.norwaldex.Quillmont
readonly program=Contents/MacOS/Quillmont
readonly patience=150 # tenths of a second: an ejection in progress takes about three seconds
failures=0

say() { printf '%s\n' "$*" 2>/dev/null || :; }

complain() {
  printf 'uninstall: %s\n' "$*" >&2 || :
  failures=$((failures + 1))
}

# enter PATH: leaves in $folder where the folder PATH really is. The root folder is none.
enter() {
  folder=
  case $1 in /*) ;; *) return 1 ;; esac
  cd -P -- "$1" 2>/dev/null || return 1
  folder=$PWD # unlike $(pwd), it keeps a newline at the end of a name
  cd /
  [ "$folder" != / ] && [ "$folder" != // ]
}
is_there() { [ -e "$1" ] || [ -L "$1" ]; }
is_real_folder() { [ -d "$1" ] && [ ! -L "$1" ]; }

# erase KIND BASE NAME...: deletes BASE/NAME/..., and is the only one here that deletes anything.
# A link is deleted as such and never followed, neither at the end nor on the way below BASE.
#   file         no folder
#   tree         with everything in it
#   emptied      a folder that holds nothing any more
#   application  a tree that belongs to the user, in whosever folder
erase() {
  local kind=$1 path base name
  if [ $# -lt 3 ] || ! enter "$2"; then return 0; fi
  base=$folder
  path=$base
  shift 2
  for name in "$@"; do
    case $name in '' | . | .. | */*) return 0 ;; esac
    [ "$path" = "$base" ] || is_real_folder "$path" || return 0
    path=$path/$name
  done
  is_there "$path" || return 0
  case $kind in
    application) is_real_folder "$path" && [ -O "$path" ] || return 0 ;;
    file) [ -O "$base" ] && ! is_real_folder "$path" || return 0 ;;
    *) [ -O "$base" ] || return 0 ;;
  esac
  if [ "$kind" = emptied ] && [ ! -L "$path" ]; then
    rmdir -- "$path" 2>/dev/null && say "deleted $path"
    return 0
  fi
  if [ "$kind" = file ] || [ -L "$path" ]; then
    rm -f -- "$path"
  else
    rm -rf ${one_file_system:+"$one_file_system"} -- "$path"
  fi
  if is_there "$path"; then complain "cannot delete $path"; else say "deleted $path"; fi
}

# Whether process $1 is this bundle's program and this user's. Others of its name go on.
is_own_program() {
  local executable=$bundle/$program target
  [ -O "/proc/$1" ] && target=$(readlink "/proc/$1/exe" 2>/dev/null) || return 1
  # The second text is that of a program whose file has been deleted.
  [ "$target" = "$executable" ] || [ "$target" = "$executable (deleted)" ]
}

# own_programs [PROCESS...]: of those, or of all.
own_programs() {
  local process command
  if [ "$system" = Darwin ]; then
    ps -U "$(id -u)" -x -ww -o pid= -o comm= 2>/dev/null | while read -r process command; do
      if [ "$command" = "$bundle/$program" ] || [ "$command" -ef "$bundle/$program" ]; then
        echo "$process"
      fi
    done
    return 0
  fi
  # shellcheck disable=SC2048 # numbers, one a word, or else a pattern
  for process in ${*:-/proc/[0-9]*}; do
    process=${process#/proc/}
    if is_own_program "$process"; then echo "$process"; fi
  done
}

# signal_programs SIGNAL TICKS: until none is left, or the tenths of a second are over.
signal_programs() {
  local ticks=$2 programs
  programs=$(own_programs)
  [ -n "$programs" ] || return 0
  # shellcheck disable=SC2086 # numbers, one a word
  kill -s "$1" $programs 2>/dev/null
  # shellcheck disable=SC2086
  while [ -n "$(own_programs $programs)" ]; do
    [ "$ticks" -gt 0 ] || return 1
    ticks=$((ticks - 1))
    sleep 0.1
  done
  say "ended the program"
}

end_program() {
  signal_programs TERM "$patience" || signal_programs KILL 20 ||
    complain "the program does not end"
}

remove_agent_of_mac() {
  local agent=$home/Library/LaunchAgents/$label.plist
  if launchctl bootout "gui/$(id -u)/$label" 2>/dev/null ||
    { [ -f "$agent" ] && launchctl unload "$agent" 2>/dev/null; }; then
    say "unloaded $label"
  fi
  erase file "$home/Library/LaunchAgents" "$label.plist"
}

remove_files_of_mac() {
  # The settings daemon keeps values of a file that is merely deleted.
  if defaults delete "$identifier" 2>/dev/null; then say "deleted the settings"; fi
  erase file "$home/Library/Preferences" "$identifier.plist"
  erase tree "$home/Library/Logs" Quillmont
  erase tree "$home/Library/Caches" "$identifier"
  erase tree "$home/Library/Saved Application State" "$identifier.savedState"
}

remove_application_of_mac() {
  case ${bundle##*/} in
    ?*.app) erase_application ;;
    *) say "left $bundle: it is no installed application" ;;
  esac
}

# The folders of the Linux host. A variable counts only when it holds an absolute path.
find_folders_of_linux() {
  case ${XDG_DATA_HOME-} in /*) data=$XDG_DATA_HOME ;; *) data=$home/.local/share ;; esac
  case ${XDG_CONFIG_HOME-} in /*) config=$XDG_CONFIG_HOME ;; *) config=$home/.config ;; esac
  case ${XDG_STATE_HOME-} in /*) state=$XDG_STATE_HOME ;; *) state=$home/.local/state ;; esac
  case ${XDG_CACHE_HOME-} in /*) cache=$XDG_CACHE_HOME ;; *) cache=$home/.cache ;; esac
}

is_own_entry() { grep -qs '^X-Quillmont-LaunchAgent=' -- "$1"; }

remove_agent_of_linux() {
  local control=$bundle/Contents/libexec/launchctl
  local agent=$data/quillmont/Library/LaunchAgents/$label.plist
  local entry=$config/autostart/$label.desktop
  if [ -x "$control" ]; then
    if "$control" bootout "gui/$(id -u)" "$agent" 2>/dev/null; then
      say "unloaded $label"
    else
      "$control" unload "$agent" 2>/dev/null
    fi
  fi
  # A login item of this name that somebody else wrote is not the program's.
  if is_own_entry "$entry"; then erase file "$config/autostart" "$label.desktop"; fi
  erase file "$config/autostart" "$label.desktop.new"
  erase file "$data" quillmont Library LaunchAgents "$label.plist"
  erase emptied "$data" quillmont Library LaunchAgents
  erase emptied "$data" quillmont Library
  erase emptied "$data" quillmont
}

remove_settings_of_linux() {
  local path settings=$identifier.plist
  erase file "$config" quillmont "$settings"
  erase file "$config" quillmont "$settings.new"
  for path in "$config/quillmont/$settings".damaged-[0-9]*T[0-9]*Z*; do
    erase file "$config" quillmont "${path##*/}"
  done
  erase emptied "$config" quillmont
}

# The one that the program has used, and the one that it uses where there is no other.
remove_runtime_folder() {
  local base
  for base in "${XDG_RUNTIME_DIR-}" "/run/user/$(id -u)"; do
    if enter "$base" && [ -O "$folder" ]; then
      erase tree "$base" "$identifier"
      break
    fi
  done
  erase tree "$home/.cache" "$identifier"
}

# What a path stands for in a question to the package manager, which takes patterns.
pattern_of() { printf '%s' "$1" | sed 's/[][*?\\]/\\&/g'; }

# Leaves in $package the package that the application came with. Fails if there is none.
find_package() {
  local answer status
  package=
  command -v dpkg-query >/dev/null || return 1
  answer=$(dpkg-query -S "$(pattern_of "$bundle/$program")" 2>/dev/null)
  status=$?
  [ "$status" -ne 0 ] || package=${answer%%:*}
  [ "$status" -le 1 ] || package=quillmont # nobody knows: as if it had one
  [ -n "$package" ]
}

# Where the program was ended from its panel nobody reads what is said here.
tell_about_package() {
  local notify=$bundle/Contents/libexec/osascript
  [ -x "$notify" ] || return 0
  "$notify" -e "display notification \"设置和登录项已删除。程序由软件包安装，请用 sudo apt-get remove $package 删除。\"\
 with title \"Quillmont 已卸载\" sound name \"default\"" 2>/dev/null || :
}

remove_application_of_linux() {
  if find_package; then
    say "left $bundle: it is a package's, and goes with sudo apt-get remove $package"
    tell_about_package
    return 0
  fi
  case $bundle in
    /usr/lib/quillmont) say "left $bundle: in that folder everything is a package's" ;;
    /?*/lib/quillmont) remove_tree_and_links "${bundle%/lib/quillmont}" ;;
    *) say "left $bundle: it is no installed application" ;;
  esac
}

# remove_tree_and_links PREFIX
remove_tree_and_links() {
  local link folder_of_icons
  link=$(readlink "$1/bin/quillmont" 2>/dev/null)
  erase_application || return 0
  case $link in
    "$bundle/$program" | "../lib/quillmont/$program") erase file "$1/bin" quillmont ;;
  esac
  erase file "$1/share/applications" quillmont.desktop
  erase file "$1/share/metainfo" "$identifier.metainfo.xml"
  for folder_of_icons in "$1"/share/icons/hicolor/*/apps; do
    erase file "$folder_of_icons" quillmont.png
    erase file "$folder_of_icons" quillmont.svg
  done
  erase file "$1/share/man/man1" quillmont.1.gz
  erase file "$1/share/man/zh_CN/man1" quillmont.1.gz
  erase tree "$1/share/doc" quillmont
}

erase_application() {
  if [ ! -O "$bundle" ] || [ ! -w "${bundle%/*}" ]; then
    complain "left $bundle: deleting it takes an administrator"
    return 1
  fi
  erase application "${bundle%/*}" "${bundle##*/}"
}

# Leaves in $home and $bundle the two folders that everything is found from.
find_folders() {
  if [ -z "${HOME-}" ] || ! enter "$HOME"; then
    complain "HOME does not name a home folder"
    return 1
  fi
  home=$folder
  if [ ! -O "$home" ]; then
    complain "$home belongs to somebody else; run this as that user, without sudo"
    return 1
  fi
  case $0 in
    /*) enter "${0%/*}" ;;
    */*) enter "$started_in/${0%/*}" ;;
    *) enter "$started_in" ;;
  esac
  bundle=${folder%/Contents/Resources}
  if [ -z "$bundle" ] || [ "$bundle" = "$folder" ]; then
    complain "this script does not lie in an application"
    return 1
  fi
}

# All of it is read before any of it runs: the file is among what is deleted.
main() {
  local home bundle folder package data config state cache system one_file_system=
  system=$(uname -s)
  find_folders || exit 1
  if [ "$system" = Darwin ]; then
    end_program
    remove_agent_of_mac
    remove_files_of_mac
    remove_application_of_mac
  else
    one_file_system=--one-file-system
    find_folders_of_linux
    end_program
    remove_agent_of_linux
    remove_settings_of_linux
    erase tree "$state" quillmont
    erase tree "$cache" quillmont
    remove_runtime_folder
    remove_application_of_linux
  fi
  [ "$failures" -eq 0 ]
}

main; exit
