# SPDX-License-Identifier: MIT
# awk -f tables.awk shell=SHELL [program=PROGRAM] LIST CODE: the CODE of a shell's completion, with
# what it looks up from the LIST as functions behind the comment at its top: options and values, in
# the words of that shell. For fish those of one program. Without a shell: the programs' names.

# ---- The list ------------------------------------------------------------------------------------

NR == FNR && /^\[/ {
    gsub(/[][]/, "")
    section = $1
    sub(/^[^ ]+/, "")
    owners = $0 " "
    if (section != "options" && section != "programs")
        lists[++n_lists] = section
    next
}

NR == FNR && (/^#/ || NF == 0) { next }

NR == FNR && section == "programs" && /^ / {
    refused[programs[n_programs]] = refused[programs[n_programs]] $0 " "
    next
}

NR == FNR && section == "programs" {
    if (shell == "")
        print $1
    programs[++n_programs] = $1
    inputs[$1] = $2
    refused[$1] = $0 " "
    next
}

NR == FNR && section == "options" {
    n_options++
    owner[n_options] = owners
    name[n_options, 1] = $1
    name[n_options, 2] = $2
    repeated[n_options] = sub(/\.\.\.$/, "", $3)
    split($3, takes, ":")
    label[n_options] = takes[1]
    type[n_options] = takes[2]
    text[n_options] = text_behind(3)
    next
}

NR == FNR {
    size[section]++
    word[section, size[section]] = $1
    meaning[section, size[section]] = text_behind(1)
    next
}

# ---- The code ------------------------------------------------------------------------------------

FNR == 1 && shell == "zsh" { print "#compdef" all_programs() }

NF == 0 && !filled {
    filled = 1
    print "\n# Made from the list of the options: to be changed there."
    if (shell == "bash")
        bash_tables()
    else if (shell == "fish")
        fish_tables()
    else
        zsh_tables()
}

{ print }

# ---- What the shells have in common --------------------------------------------------------------

# The line without so many words.
function text_behind(words,    rest) {
    rest = $0
    while (words-- > 0)
        sub(/^[^ ]+ +/, "", rest)
    return rest
}

# Each with a blank before it.
function all_programs(    p, result) {
    for (p = 1; p <= n_programs; p++)
        result = result " " programs[p]
    return result
}

function has(program, option) {
    return (owner[option] == " " || index(owner[option], " " program " ")) &&
        !index(refused[program], " " name[option, 1] " ")
}

# Whether one word of a list is all that the argument can be; else the code knows how to make it.
function is_plain(list) {
    return list != "kinds" && list in size
}

# In single quotes; an apostrophe is written as the shell has it there.
function quoted(string, apostrophe,    parts, n, i, result) {
    n = split(string, parts, "'")
    for (i = 1; i <= n; i++)
        result = result (i > 1 ? apostrophe : "") parts[i]
    return "'" result "'"
}

# ---- bash: lines of a word and its text, for an option with what it takes in between -------------

function bash_tables(    p, l) {
    print "_gravlex_options() {\n    case $1 in"
    for (p = n_programs; p > 1; p--)
        bash_options(programs[p], programs[p])
    bash_options("*", programs[1])
    print "    esac\n}\n\n_gravlex_values() {\n    case $1 in"
    for (l = 1; l <= n_lists; l++)
        bash_list(lists[l])
    print "    esac\n}\n"
    print "complete -o default -F _gravlex" all_programs()
}

function bash_options(pattern, program,    o, k) {
    print "        " pattern ") cat <<'END' ;;"
    for (o = 1; o <= n_options; o++)
        for (k = 1; k <= 2; k++)
            if (name[o, k] != "-" && has(program, o))
                print name[o, k], bash_takes(o), text[o]
    print "END"
}

function bash_takes(o) {
    return label[o] == "-" ? "nothing" : type[o] == "" ? "anything" : type[o]
}

function bash_list(list,    i) {
    print "        " list ") cat <<'END' ;;"
    for (i = 1; i <= size[list]; i++)
        print word[list, i], meaning[list, i]
    print "END"
}

# ---- fish: a line for each option; the words of a list, each with its text -----------------------

function fish_tables(    o, l) {
    print "function __gravlex_values\n    switch $argv[1]"
    for (l = 1; l <= n_lists; l++)
        fish_list(lists[l])
    print "    end\nend\n"
    for (o = 1; o <= n_options; o++)
        if (has(program, o))
            print "complete -c " program fish_names(o) fish_takes(o) " -d " \
                quoted(text[o], "\\'")
}

function fish_names(o) {
    return (name[o, 2] == "-" ? "" : " -s " quoted(substr(name[o, 2], 2))) \
        (name[o, 1] == "-" ? "" : " -l " substr(name[o, 1], 3))
}

function fish_takes(o) {
    if (label[o] == "-")
        return ""
    if (type[o] == "file")
        return " -rF"
    if (type[o] == "")
        return " -x"
    return " -x -a '(__gravlex_" (is_plain(type[o]) ? "values " : "") type[o] ")'"
}

function fish_list(list,    i) {
    print "        case " list
    for (i = 1; i <= size[list]; i++)
        print "            echo " word[list, i] "\\t" quoted(meaning[list, i], "\\'")
}

# ---- zsh: the arguments of _arguments, and of _describe ------------------------------------------

function zsh_tables(    p, l) {
    print "_gravlex_options() {\n    case $1 in"
    for (p = n_programs; p > 1; p--)
        zsh_options(programs[p], programs[p])
    zsh_options("*", programs[1])
    print "    esac\n}\n\n_gravlex_values() {\n    case $1 in"
    for (l = 1; l <= n_lists; l++)
        zsh_list(lists[l])
    print "    esac\n}"
}

function zsh_options(pattern, program,    o, k) {
    print "        " pattern ") reply=("
    for (o = 1; o <= n_options; o++)
        for (k = 1; k <= 2; k++)
            if (name[o, k] != "-" && has(program, o))
                print "            " quoted(zsh_option(o, k), "'\\''")
    k = inputs[program]
    print "            '" (sub(/\.\.\.$/, "", k) ? "*:" : "1:") k ":_files'"
    print "        ) ;;"
}

function zsh_option(o, k) {
    return zsh_excluded(o) name[o, k] (label[o] == "-" ? "" : k == 1 ? "=" : "+") \
        "[" text[o] "]" (label[o] == "-" ? "" : ":" label[o] ":" zsh_action(o))
}

# What is not offered once the option is there: its other name, and all else after the help.
function zsh_excluded(o) {
    if (name[o, 1] == "--help" || name[o, 1] == "--usage")
        return "(- *)"
    if (repeated[o])
        return "*"
    return name[o, 1] == "-" || name[o, 2] == "-" ? "" : "(" name[o, 2] " " name[o, 1] ")"
}

function zsh_action(o) {
    if (type[o] == "")
        return " "
    if (type[o] == "file")
        return "_files"
    return is_plain(type[o]) ? " _gravlex_words " type[o] : "_gravlex_" type[o]
}

function zsh_list(list,    i) {
    print "        " list ") reply=("
    for (i = 1; i <= size[list]; i++)
        print "            " quoted(word[list, i] ":" meaning[list, i], "'\\''")
    print "        ) ;;"
}
