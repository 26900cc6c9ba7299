// For builds with AddressSanitizer: keeps libraries loaded, so that a leak reported at exit names the library that it
// comes from, and tests/lsan.supp can suppress it.

#include <dlfcn.h>

extern "C" int dlclose(void * /*library*/)
{
    return 0;
}
