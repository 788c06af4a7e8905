# What the tests for 32 bits leave out, by name, and why.
set(sources_left_out formatting/cardinal_test.cc)
message(STATUS "Left out: formatting/cardinal_test.cc (Cardinals), which compares with libicu "
               "and libnumbertext; the machine that builds has them for 64 bits only")
