// For builds with AddressSanitizer: libraries that were loaded stay loaded, so that a leak reported at the end of the
// program still has the name of the library that it comes from, and tests/lsan.supp can tell it from ours.

#include <dlfcn.h>

extern "C" int dlclose(void * /*library*/)
{
    return 0;
}
