# The help text of nequar or of one of its commands as records, the fields separated by tabs:
#
#   summary  TEXT        usage  TEXT        section  NAME        entry  TERM  DESCRIPTION
#
# In the text a section begins in the first column and ends in a colon; an entry stands two spaces in,
# its term ended by two spaces, by the column of the descriptions or, when it is longer, by the end of
# the line; what stands further in belongs to the description.
BEGIN { column = 35 }
function flush_entry() {
    if (term != "") print "entry\t" term "\t" description
    term = description = ""
}
/^[^ ].*:$/ { flush_entry(); print "section\t" substr($0, 1, length($0) - 1); next }
/^Usage: / { print "usage\t" substr($0, 8); next }
/^  [^ ]/ {
    flush_entry()
    term = substr($0, 3)
    if (match(term, /  +/)) {
        description = substr(term, RSTART + RLENGTH)
        term = substr(term, 1, RSTART - 1)
    } else if (substr($0, column - 1, 2) ~ /^ [^ ]/) {
        description = substr($0, column)
        term = substr($0, 3, column - 4)
    }
    next
}
/^   / {
    text = $0
    sub(/^ +/, "", text)
    description = description (description == "" ? "" : " ") text
    next
}
/./ { flush_entry(); print "summary\t" $0 }
END { flush_entry() }
