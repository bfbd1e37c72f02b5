# Makes Debian's change log of CHANGELOG.md. Needs -v version=, and -v date= for what is not released yet.
# A section becomes an entry, a paragraph of it an item.
function flush_item(   words, count, i, line) {
  if (item == "") return
  count = split(item, words, " ")
  line = "  *"
  for (i = 1; i <= count; i++) {
    if (length(line) + 1 + length(words[i]) > 80) {
      print line
      line = "   "
    }
    line = line " " words[i]
  }
  print line
  item = ""
}

function flush_entry() {
  flush_item()
  if (entry != "") printf "\n -- %s  %s\n", maintainer, entry_date
}

/^## / {
  flush_entry()
  if (entry != "") print ""
  released = $3 ~ /^[0-9]+-[0-9]+-[0-9]+$/
  entry = substr($2, 1, length($2) - 1)
  if (!newest) newest = entry
  if (released) {
    "date -u -R -d " $3 | getline entry_date
  } else {
    entry_date = date
  }
  printf "quillmont (%s) %s; urgency=medium\n\n", entry, released ? "stable" : "UNRELEASED"
  next
}
entry == "" { next }
/^$/ { flush_item(); next }
{ sub(/^- /, ""); item = item " " $0 }

END {
  flush_entry()
  if (newest != version) {
    print "CHANGELOG.md begins with " newest ", not with " version >"/dev/stderr"
    exit 1
  }
}
