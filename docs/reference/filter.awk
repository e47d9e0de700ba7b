# What Doxygen reads in place of a header. The headers are written for people; this tells Doxygen what
# a reader sees:
#   - a section, "// ---- title ----" with the lines of // that follow it, is a group of members;
#   - a declaration that follows another one line on line shares its comment (overloads, short names);
#   - a constructor, destructor or assignment without a comment is what its class says of copies;
#   - what is protected is for the library's own classes, except in the root class;
#   - a template says under which public names it is used;
#   - the characters < > # % @ & in running text stand for themselves.

function is_comment(line) { return line ~ /^ *\/\/\// }

function escaped(line,    at, text, out, quoted, c, i) {
    match(line, /^ *\/\/\/ ?/)
    text = substr(line, RLENGTH + 1)
    if (text ~ /^    /) return line  # a drawing
    out = substr(line, 1, RLENGTH)
    quoted = 0
    for (i = 1; i <= length(text); i++) {
        c = substr(text, i, 1)
        if (c == "`") quoted = !quoted
        if (!quoted && index("<>#%@&", c) > 0) out = out "\\"
        out = out c
    }
    return out
}

function print_comment(    i) {
    for (i = 1; i <= comment_lines; i++) print escaped(comment[i])
}

# The class that is declared on this line or on the next.
function class_here() {
    return (FNR in class_on) ? class_on[FNR] : class_on[FNR + 1]
}

function print_public_names(    class) {
    class = class_here()
    if (class in public_names) print "///\n/// Public names: " public_names[class] "."
}

function close_section() {
    if (in_section) print "    ///@}"
    in_section = 0
}

function depth_of(text,    copy, open) {
    gsub(/"[^"]*"/, "", text)
    sub(/\/\/.*/, "", text)
    copy = text
    open = gsub(/[({]/, "", copy)
    return open - gsub(/[)}]/, "", text)
}

# A whole declaration has been read.
function end_declaration(    special) {
    special = class_name != "" && declaration ~ ("[ ~]" class_name " *\\(") &&
        declaration !~ ("[&*] *" class_name " *\\(")
    special = special || declaration ~ /operator=\(/
    if (!is_commented && special) {
        print "    /// @cond"
        printf "%s", declaration
        print "    /// @endcond"
        shares = 0
    } else {
        if (is_commented || shares) print_comment()
        printf "%s", declaration
        shares = is_commented || shares
    }
    declaration = ""
    is_commented = 0
}

BEGIN {
    class_name = ""
    depth = shares = comment_lines = 0
    # using CNqMatrix = nequar::Matrix<double>;
    while ((getline line < ARGV[1]) > 0) {
        ++number
        if (line ~ /^using L?CNq/) {
            split(line, word, " ")
            sub(/^nequar::/, "", word[4])
            sub(/<.*/, "", word[4])
            so_far = word[4] in public_names ? public_names[word[4]] ", " : ""
            public_names[word[4]] = so_far "`" word[2] "`"
        }
        if (line ~ /^class NEQUAR_API /) {
            split(line, word, " ")
            class_on[number] = word[3]
        }
    }
}

/^#pragma once/ { print; print "/// @file"; next }
/^extern template/ { print ""; next }

# Sections.
section_text {
    if ($0 ~ /^ *\/\/($|[^\/])/) {
        sub(/\/\//, "///")
        print escaped($0)
        next
    }
    section_text = 0
    print "    ///@{"
    in_section = 1
}
/^ *\/\/ ---- / {
    close_section()
    title = $0
    sub(/^ *\/\/ ---- */, "", title)
    sub(/ *-*$/, "", title)
    gsub(/`/, "", title)
    if (title ~ /^for the library's own/) print "private:"
    print "    /// @name " toupper(substr(title, 1, 1)) substr(title, 2)
    section_text = 1
    shares = 0
    next
}

/^(public|protected|private):/ {
    close_section()
    shares = 0
    if ($0 ~ /^protected/ && FILENAME !~ /frame\/class\.h$/) print "private:"
    else print
    next
}
/^};/ {
    close_section()
    class_name = ""
    shares = 0
    print
    next
}
/^class / && !/;$/ {
    line = $0
    sub(/^class (NEQUAR_API )?/, "", line)
    sub(/[ :{].*/, "", line)
    class_name = line
}

# Comments are kept until it is known what they belong to.
is_comment($0) {
    if (!is_commented) comment_lines = 0
    comment[++comment_lines] = $0
    is_commented = 1
    next
}

# The members of a class stand four spaces in.
class_name != "" && declaration == "" && /^    [^ \/}]/ {
    declaration = $0 "\n"
    depth = depth_of($0)
    if (depth == 0 && $0 ~ /[;}]( *\/\/.*)?$/) end_declaration()
    next
}
declaration != "" {
    declaration = declaration $0 "\n"
    depth += depth_of($0)
    if (depth == 0 && $0 ~ /[;}]( *\/\/.*)?$/) end_declaration()
    next
}

# The public names of the templates.
/^using L?CNq/ && !is_commented {
    name = $0
    sub(/^[^=]*= */, "", name)
    sub(/;.*/, "", name)
    print "/// The public name of `" name "`."
    print
    next
}

# All else: classes, free functions, blank lines.
{
    if (is_commented) {
        print_comment()
        print_public_names()
        shares = 1
    } else if (shares && /^NEQUAR_API/) {
        print_comment()
    } else {
        shares = 0
    }
    is_commented = 0
    print
}
