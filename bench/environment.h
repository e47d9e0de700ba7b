// OpenBLAS 0.3.21 does not know newer CPUs inside a virtual machine and then runs 128-bit code
// without a word; what it should run must stand in the environment before it is loaded.
#pragma once

namespace bench {

// Starts this program anew with OPENBLAS_CORETYPE set to what the CPU can do (unless the user set
// it) and with one thread for everybody; returns when that has been done already.
void restart_with_environment(char** arguments);

}  // namespace bench
