# What the tests for Windows leave out, by name, and why. Sources whose names end in
# _posix_test.cc are left out too: they need fork, signals, modes or /proc, and have a
# counterpart that ends in _windows_test.cc where Windows has one of its own.
set(sources_left_out
    formatting/cardinal_test.cc  # libicu and libnumbertext, which Debian has for itself only
)
set(tests_left_out
    Failures.OfAFullDisk  # /dev/full, and a link to it
    FlatFile.AFileThatCannotBeThereIsRaised
)
