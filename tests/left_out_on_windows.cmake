# What the tests for Windows leave out, by name, and why. Sources whose names end in
# _posix_test.cc are left out too: they need fork, signals, modes or /proc, and have a
# counterpart that ends in _windows_test.cc where Windows has something of its own to test.
set(sources_left_out
    formatting/cardinal_test.cc  # libicu and libnumbertext, which Debian has for itself only
)
set(tests_left_out
    Failures.OfAFullDisk  # a link to /dev/full
    LiveTraceTest.ALongTextIsSavedOnce  # the mode of a file
    FlatFile.AFileThatCannotBeThereIsRaised
    # Threads with a smaller stack than the program's: pthreads for Windows makes none.
    SmallStack.ComputesChainsAsFarAsTheStackGoes
    # They remove files that are in use, which Windows does not do.
    LiveTraceTest.DeletedFilesComeBack
    LiveTraceTest.TakesTheFormerTraceOutOfTheSettings
    TraceTest.IsTheSameInEveryStore
)
# Cases of the tool, by the pattern of their line.
set(cases_left_out
    # An argument that is not text: the bytes of one become characters on the way.
    "tovalin call *xF1'" "tovalin eval *xE1*"
    # An argument beyond the 32,767 characters of a command line.
    "tovalin eval *head -c 100000*"
    # Signals and limits of the size of a file.
    "*ulimit -f*"
    # Links, which this library of C++ does not know on Windows.
    "*ln -s real d/link*"
    # Devices of another system.
    "* -o /dev/*"
    # Settings without an evaluation before, without a directory or in one of the case's
    # own: Windows names one for each user, where the other tests have evaluated.
    "tovalin trace" "env -u XDG_CONFIG_HOME*" "*cat ?XDG_CONFIG_HOME*"
)
