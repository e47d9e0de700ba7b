// The clock of the measurements: processor time of this process, all its threads together. On a
// busy machine it does not count the time that others take, and nobody gains by using a second
// thread.
#pragma once

namespace bench {

double processor_seconds();

}  // namespace bench
