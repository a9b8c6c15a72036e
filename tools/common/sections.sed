# Finishes a manual page that help2man has written.

# The headings of the help become sections, except those of one command.
s/^\.SS "Command (.*):"$/.SH "COMMAND \U\1"/
1,/^\.SH "COMMAND / s/^\.SS "(.*):"$/.SH "\U\1"/
# Examples keep their lines, and can be pasted into a shell.
/^\.SH EXAMPLES$/,/^\.SH "?[^E]/ {
    s/^\.IP$/.nf/
    s/'/\\(aq/g
    s/^\.SH [^E]/.fi\n&/
}
